#include <gtest/gtest.h>

#include <algorithm>
#include <boost/json.hpp>
#include <string>
#include <vector>

#include "tests/support/TemporaryFolder.h"
#include "tests/tools/ToolProcess.h"

namespace quillon::test {
namespace {

namespace json = boost::json;

// The rules that a document breaks.
std::vector<std::string> brokenRules(const TemporaryFolder& folder, const json::value& document) {
  const std::string file = folder.path() / "config.json";
  setFileBytes(file, json::serialize(document));
  const auto run = runTool({"validate", "--fairness", "--format", "json", file});
  EXPECT_EQ(run.status, 0) << run.output;
  std::vector<std::string> rules;
  const auto printed = json::parse(run.output);
  for (const auto& finding : printed.at_pointer("/files/0/findings").as_array()) {
    std::string rule(finding.at("rule").as_string());
    if (rules.empty() || rules.back() != rule) rules.push_back(std::move(rule));
  }
  return rules;
}

// The sample asks fairly; each case changes one thing, as products did that were found to deceive.
TEST(Fairness, DeceptionIsCaughtByTheRuleAboutIt) {
  const struct {
    const char* what;
    const char* place;
    const char* value;
    const char* rule;
  } cases[] = {
      {"no choice in Europe", "/banner_config/categories/eu/compliance_type", R"("notice-only")", "fair-opt-in"},
      {"refusing on the second layer", "/banner_config/categories/eu/reject/en", R"("Manage my options")",
       "fair-refusal"},
      {"two buttons that accept", "/banner_config/categories/eu/reject/de", R"("Alle akzeptieren")", "fair-refusal"},
      {"a loud button beside a quiet one", "/banner_config/categories/eu/accept/en", R"("YES, ACCEPT ALL")",
       "fair-answers"},
      {"ticked beforehand", "/purposes/3/consent_status", R"("granted")", "fair-default"},
      {"going on is consent", "/banner_config/categories/eu/banner_text/en",
       R"("We use data. By continuing to use the app you agree.")", "fair-silence"},
      {"no way to decide by purpose", "/banner_config/categories/eu/preference_center_link", "null", "fair-withdrawal"},
      {"asked again until they agree", "/banner_config/categories/eu/banner_reappearance_time", R"("1 month")",
       "fair-pause"},
      {"no notice on the first layer", "/banner_config/categories/eu/privacy_notice_link", "null", "fair-notice"},
      {"refusing in another language", "/banner_config/categories/eu/reject", R"({"en": "Reject all"})",
       "fair-languages"},
      {"guilt", "/banner_config/categories/eu/reject/en", R"("No thanks, I don’t care about journalism. Reject")",
       "fair-words"},
      {"hidden in plain sight", "/banner_config/categories/eu/palette/banner_links", R"("#F5F5F5")", "fair-sight"},
      {"switches that look alike", "/banner_config/categories/eu/palette/toggle_secondary", R"("#1B7A43")",
       "fair-sight"},
      {"advertising as essential", "/purposes/3/disable_opt_out", "true", "fair-essential"},
      {"recipients in the dark", "/purposes/3/hide_details", "true", "fair-information"},
      {"a purpose without explanation", "/purposes/1/purpose_description", "null", "fair-information"},
  };
  const TemporaryFolder folder{TemporaryFolder::fastParent()};
  const auto sample = json::parse(fileBytes(QUILLON_SAMPLE_CONFIGURATION));
  EXPECT_EQ(brokenRules(folder, sample), std::vector<std::string>());
  for (const auto& [what, place, value, rule] : cases) {
    auto document = sample;
    const std::string pointer = place;
    const auto key = pointer.rfind('/');
    document.at_pointer(pointer.substr(0, key)).as_object()[pointer.substr(key + 1)] = json::parse(value);
    const auto broken = brokenRules(folder, document);
    EXPECT_NE(std::ranges::find(broken, rule), broken.end()) << what;
    EXPECT_LE(broken.size(), 2u) << what;
  }
}

// What was decided to be a fair refusal stays one.
TEST(Fairness, PlainRefusalsPass) {
  const TemporaryFolder folder{TemporaryFolder::fastParent()};
  auto document = json::parse(fileBytes(QUILLON_SAMPLE_CONFIGURATION));
  for (const char* refusal : {"Continue without accepting", "Reject all", "Decline"}) {
    document.at_pointer("/banner_config/categories/eu/reject").as_object()["en"] = refusal;
    EXPECT_EQ(brokenRules(folder, document), std::vector<std::string>()) << refusal;
  }
}

}  // namespace
}  // namespace quillon::test
