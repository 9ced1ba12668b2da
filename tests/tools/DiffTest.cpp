#include <gtest/gtest.h>

#include <boost/json.hpp>

#include "tests/support/Contains.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/World.h"
#include "tests/tools/ToolProcess.h"

namespace quillon::test {
namespace {

namespace json = boost::json;

// Runs `diff` over the valid configuration and the one that the edit makes of it.
ToolRun diff(const std::function<void(json::object&)>& edit) {
  const TemporaryFolder folder;
  auto after = validConfiguration();
  edit(after);
  setFileBytes(folder.path() / "old.json", json::serialize(validConfiguration()));
  setFileBytes(folder.path() / "new.json", json::serialize(after));
  return runTool({"diff", folder.path() / "old.json", folder.path() / "new.json"});
}

TEST(Diff, TellsWhatIsMaterialAndWhoIsAskedAgain) {
  EXPECT_EQ(diff([](json::object&) {}).output,
            "asked again: nobody before the answer expires, since version 5 is not newer than 5\n");
  const auto [status, output, errors] = diff([](json::object& document) {
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
  });
  EXPECT_EQ(output, R"(material: purpose 1 "Counting?material: a lie" has another name
material: purpose 1 "Counting?material: a lie" covers "Counter" too
material: purpose 2 "Security" is no longer essential
cosmetic: purpose 3 "Advertising" is presented otherwise
material: purpose 4 "" is new: its default holds until the user decides
material: purpose 4 follows the tracking status of the device
material: purpose 3 no longer follows the tracking status
material: permission "NSContactsUsageDescription" goes
material: users elsewhere: opt-out in place of opt-in, also for what was not decided yet
material: users elsewhere: an answer lasts "6 month" in place of "12 month", also one that was given before
cosmetic: users elsewhere: the banner has other texts or another look
material: consent mode is new
cosmetic: labels of the screens change
asked again: everyone who has answered, since version 6 is newer than 5 and re_consent_enabled is true
)");
  EXPECT_EQ(status, 0);
  EXPECT_EQ(diff([](json::object& document) {
              document["version"] = 6;
              document["re_consent_enabled"] = false;
              document["banner_config"].as_object()["categories"].as_object()["us"] = {{"compliance_type", "opt-out"}};
              document["banner_config"].as_object()["locations"].as_object()["US"] = "us";
            }).output,
            R"(material: users in "US": opt-out in place of opt-in, also for what was not decided yet
asked again: nobody before the answer expires, since re_consent_enabled is not true; material changes would ask for it
)");
}

TEST(Diff, RefusesWhatIsNoConfiguration) {
  const auto [status, output, errors] = diff([](json::object& document) { document["version"] = "six"; });
  EXPECT_EQ(status, 1);
  EXPECT_EQ(output, "");
  EXPECT_TRUE(contains(errors, "new.json: version: expected an integer"));
}

}  // namespace
}  // namespace quillon::test
