#include <gtest/gtest.h>

#include <boost/json.hpp>

#include "tests/support/Contains.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/World.h"
#include "tests/tools/ToolProcess.h"

namespace quillon::test {
namespace {

namespace json = boost::json;

struct Diff : testing::Test {
  // The lines that `diff` prints for the valid configuration and the one that the edit makes of it.
  std::vector<std::string> lines(const std::function<void(json::object&)>& edit) {
    auto after = validConfiguration();
    edit(after);
    setFileBytes(folder.path() / "old.json", json::serialize(validConfiguration()));
    setFileBytes(folder.path() / "new.json", json::serialize(after));
    ToolProcess tool({"diff", folder.path() / "old.json", folder.path() / "new.json"}, folder.path() / "errors");
    auto printed = tool.readLines();
    status = tool.wait().value_or(-1);
    return printed;
  }

  TemporaryFolder folder;
  int status = -1;
};

using Lines = std::vector<std::string>;

TEST_F(Diff, TellsWhatIsMaterialAndWhoIsAskedAgain) {
  EXPECT_EQ(lines([](json::object&) {}),
            Lines{"asked again: nobody before the answer expires, since version 5 is not newer than 5"});
  EXPECT_EQ(lines([](json::object& document) {
              document["version"] = 6;
              auto& purposes = document["purposes"].as_array();
              purposes[0].as_object()["purpose_name"] = {{"en", "Counting\nmaterial: a lie"}};
              purposes[0].as_object()["sdks"] = {{{"sdk_id", 7}, {"sdk_name", {{"en", "Counter"}}}}};
              purposes[1].as_object().erase("disable_opt_out");
              purposes[2].as_object()["opt_out_text"] = {{"en", "No"}};
              purposes.emplace_back(json::object{{"purpose_id", 4}});
              document["att_or_gad_config"].as_object()["purpose_ids"] = json::array{4};
              document["permissions"].as_array().pop_back();
              bannerOf(document)["compliance_type"] = "opt-out";
              bannerOf(document)["banner_reappearance_time"] = "6 month";
              bannerOf(document)["accept"] = {{"en", "Yes"}};
              document["is_gcm_enabled"] = true;
              document["gcm_config"] = {{"default_mapping", {{"ad_storage", {1}}}}};
              document["i18n"] = {{"en", {{"accept", "Yes"}}}};
            }),
            (Lines{R"(material: purpose 1 "Counting?material: a lie" has another name)",
                   R"(material: purpose 1 "Counting?material: a lie" covers "Counter" too)",
                   R"(material: purpose 2 "Security" is no longer essential)",
                   R"(cosmetic: purpose 3 "Advertising" is presented otherwise)",
                   R"(material: purpose 4 "" is new: its default holds until the user decides)",
                   "material: purpose 4 follows the tracking status of the device",
                   "material: purpose 3 no longer follows the tracking status",
                   R"(material: permission "NSContactsUsageDescription" goes)",
                   "material: users elsewhere: opt-out in place of opt-in, also for what was not decided yet",
                   R"(material: users elsewhere: an answer lasts "6 month" in place of "12 month", also one that was )"
                   "given before",
                   "cosmetic: users elsewhere: the banner has other texts or another look",
                   "material: consent mode is new", "cosmetic: labels of the screens change",
                   "asked again: everyone who has answered, since version 6 is newer than 5 and re_consent_enabled is "
                   "true"}));
  EXPECT_EQ(status, 0);
  EXPECT_EQ(lines([](json::object& document) {
              document["version"] = 6;
              document["re_consent_enabled"] = false;
              document["banner_config"].as_object()["categories"].as_object()["us"] = {{"compliance_type", "opt-out"}};
              document["banner_config"].as_object()["locations"].as_object()["US"] = "us";
            }),
            (Lines{R"(material: users in "US": opt-out in place of opt-in, also for what was not decided yet)",
                   "asked again: nobody before the answer expires, since re_consent_enabled is not true; material "
                   "changes would ask for it"}));
}

TEST_F(Diff, RefusesWhatIsNoConfiguration) {
  EXPECT_EQ(lines([](json::object& document) { document["version"] = "six"; }), Lines());
  EXPECT_EQ(status, 1);
  EXPECT_TRUE(contains(fileBytes(folder.path() / "errors"), "new.json: version: expected an integer"));
}

}  // namespace
}  // namespace quillon::test
