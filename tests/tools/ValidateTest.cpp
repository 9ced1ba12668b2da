#include <gtest/gtest.h>

#include <boost/json.hpp>
#include <filesystem>
#include <string>
#include <vector>

#include "tests/support/TemporaryFolder.h"
#include "tests/tools/ToolProcess.h"

namespace quillon::test {
namespace {

struct Validate : testing::Test {
  // What it prints of these files, without the name of their folder.
  std::string run(const std::vector<std::string>& names, int status, bool lint = false) const {
    std::vector<std::string> arguments{"validate"};
    for (const auto& name : names) arguments.push_back(file(name));
    if (lint) arguments.push_back("--lint");
    auto printed = runTool(arguments);
    EXPECT_EQ(printed.status, status);
    for (auto at = printed.output.find(file("")); at != std::string::npos; at = printed.output.find(file(""))) {
      printed.output.erase(at, file("").size());
    }
    return printed.output;
  }
  std::string file(const std::string& name) const { return folder.path() / name; }

  const TemporaryFolder folder{TemporaryFolder::fastParent()};
};

boost::json::object merged(boost::json::object object, const boost::json::value& changes) {
  for (const auto& [key, value] : changes.as_object()) object[key] = value;
  return object;
}

// A document in which the lint finds nothing, with other values for some of its keys; null takes a key away.
std::string documentWith(const std::string& changes) {
  const auto document = boost::json::parse(R"({
    "x-auth-token": "token",
    "purposes": [{"purpose_id": 1, "purpose_name": {"en": "Statistics"}, "disable_opt_out": false}],
    "permissions": [{"permission_id": "NSCameraUsageDescription"}],
    "banner_config": {
      "categories": {"eu": {"compliance_type": "opt-in", "accept": {"en": "Accept"}}},
      "names_map": {"Europe": "eu"}, "locations": {"DE": "Europe", "default": "eu"}
    }
  })");
  return boost::json::serialize(merged(document.as_object(), boost::json::parse(changes)));
}

// The same with other values for some keys of its banner.
std::string bannerWith(const std::string& changes) {
  auto document = boost::json::parse(documentWith("{}"));
  auto& banner = document.at_pointer("/banner_config/categories/eu").as_object();
  banner = merged(banner, boost::json::parse(changes));
  return boost::json::serialize(document);
}

TEST_F(Validate, NamesTheFirstErrorOfEachFile) {
  setFileBytes(file("good"), documentWith("{}"));
  setFileBytes(file("typo"), R"({"purposes":[{"purpose_id":1},{"purpose_id":"two"}],"version":"x"})");
  setFileBytes(file("cut"), R"({"version":1)");
  setFileBytes(file("huge"), "");
  std::filesystem::resize_file(file("huge"), (std::size_t{32} << 20) + 1);
  EXPECT_EQ(run({"good", "typo", "good", "missing", "cut", "huge", "."}, 1), R"(good: ok
typo: purposes[1].purpose_id: expected an integer
good: ok
missing: cannot be read: No such file or directory
cut: version: incomplete JSON at byte 12
huge: document: larger than 32 MiB
.: cannot be read: Is a directory
)");
  EXPECT_EQ(run({"good", "good"}, 0), "good: ok\ngood: ok\n");
  setFileBytes(file("[marks]"), "{\"i18n\":{\"en\":{\"a\u009b31m\u202eb\":1}}}");
  const std::string marks = run({"[marks]"}, 1);
  EXPECT_TRUE(marks.starts_with("[marks]: i18n.en.a\\u009b31m\\u202eb: ")) << marks;
}

TEST_F(Validate, WarnsOnlyWhenAsked) {
  setFileBytes(file("poor"), documentWith(R"({"x-auth-token": null})"));
  EXPECT_EQ(run({"poor"}, 0), "poor: ok\n");
  EXPECT_EQ(runTool({"validate", "--lint", QUILLON_SAMPLE_CONFIGURATION}).output,
            QUILLON_SAMPLE_CONFIGURATION ": ok\n");
}

TEST_F(Validate, LintReportsExactlyWhatIsWrong) {
  const struct {
    std::string document;
    std::vector<std::string> warnings;
  } cases[] = {
      {documentWith("{}"), {}},
      {documentWith(R"({"x-auth-token": ""})"), {"x-auth-token: is missing; no consent can be uploaded"}},
      {documentWith(R"({"purposes": []})"), {"purposes: there are none; nothing is asked"}},
      {documentWith(R"({"purposes": [{}]})"),
       {"purposes[0].purpose_id: is missing; no decision about this purpose can be kept",
        "purposes[0].purpose_name: is missing; the user cannot tell what is asked",
        "purposes[0].disable_opt_out: is missing; selecting all purposes leaves this one out"}},
      {documentWith(R"({"purposes": [
               {"purpose_id": 4, "purpose_name": {"en": "A"}, "disable_opt_out": false},
               {"purpose_id": 5, "purpose_name": {"en": "B"}, "disable_opt_out": true},
               {"purpose_id": 4, "purpose_name": {"en": "C"}, "disable_opt_out": false}]})"),
       {"purposes[2].purpose_id: purposes[0] has the same"}},
      {documentWith(R"({"att_or_gad_config": {"purpose_ids": [1, 9]}})"),
       {"att_or_gad_config.purpose_ids[1]: there is no purpose 9"}},
      {documentWith(R"({"privacy_signal_purposes": [9]})"), {"privacy_signal_purposes[0]: there is no purpose 9"}},
      {documentWith(R"({"gcm_config": {
               "default_mapping": {"analytics_storage": [7, 1], "ad_storage": [1]},
               "region_overrides": {"US#CA, US#VA": {"ad_user_data": [1, -8], "ad_personalization": [6]}}}})"),
       {"gcm_config.default_mapping.analytics_storage[0]: there is no purpose 7",
        "gcm_config.region_overrides.US#CA, US#VA.ad_user_data[1]: there is no purpose -8",
        "gcm_config.region_overrides.US#CA, US#VA.ad_personalization[0]: there is no purpose 6"}},
      {documentWith(R"({"permissions": [
               {"permission_id": "SUBJECT_ID"}, {"permission_id": "CDN_ETAG"}, {"permission_id": "-12"},
               {"permission_id": "012"}, {"permission_id": "subject_id"}, {"name": "Camera"}]})"),
       {R"(permissions[0].permission_id: "SUBJECT_ID" is a name under which the SDK keeps a value of its own)",
        R"(permissions[1].permission_id: "CDN_ETAG" is a name under which the SDK keeps a value of its own)",
        R"(permissions[2].permission_id: "-12" is the name under which the decision on a purpose is kept)",
        "permissions[5].permission_id: is missing; nothing can be found out about this permission"}},
      {documentWith(R"({"settings_prompt": {"permissions":
               {"NSCameraUsageDescription": true, "NSMicrophoneUsageDescription": false}}})"),
       {"settings_prompt.permissions.NSMicrophoneUsageDescription: no listed permission has this key"}},
      {documentWith(R"({"banner_config": null})"), {"banner_config: is missing; there is no banner to show"}},
      {documentWith(R"({"banner_config": {"categories": {}, "names_map": {}, "locations": {}}})"),
       {"banner_config.categories: is empty; there is no banner to show"}},
      {bannerWith(R"({"compliance_type": null})"),
       {"banner_config.categories.eu.compliance_type: is missing; notice-only applies"}},
      {bannerWith(R"({"palette": {"button_background": "#1D3A5F", "button_text": "#FFFFFF",
               "button_border": "#000000", "banner_background": "#FFFFFF", "banner_text": "#777777",
               "banner_links": "#FFFF00", "preference_center_footer_background": "#FFFFFF",
               "preference_center_footer_selector": "#FFFFFF"}})"),
       {"banner_config.categories.eu.palette.banner_text: has a contrast of 4.4:1 on banner_background; text is "
        "legible from 4.5:1 on",
        "banner_config.categories.eu.palette.banner_links: has a contrast of 1.0:1 on banner_background; text is "
        "legible from 4.5:1 on"}},
      {bannerWith(R"({"button_shape": "outlined", "palette": {"button_background": "#1D3A5F", "button_text": "#FFFFFF",
               "button_border": "#FFFFFF", "banner_background": "FFFFFF", "banner_text": "black",
               "banner_links": "#00f", "preference_center_footer_background": "",
               "preference_center_footer_selector": "#FFFFFF"}})"),
       {R"(banner_config.categories.eu.palette.banner_text: is "black", which is no colour such as "#1D3A5F")",
        R"(banner_config.categories.eu.palette.banner_links: is "#00f", which is no colour such as "#1D3A5F")",
        "banner_config.categories.eu.palette.button_border: has a contrast of 1.0:1 on banner_background; an outline "
        "is "
        "visible from 3.0:1 on"}},
      {documentWith(R"({"banner_config": {
               "categories": {"eu": {"compliance_type": "opt-in"}},
               "names_map": {"Europe": "eu", "Asia": "as"},
               "locations": {"DE": "Europe", "JP": "Asia", "US": "us", "default": "eu"}}})"),
       {R"(banner_config.locations.JP: "Asia" leads to no category)",
        R"(banner_config.locations.US: "us" leads to no category)",
        R"(banner_config.names_map.Asia: "as" is no category)"}},
      {documentWith(R"({"i18n": {"de": null}, "purposes": [{"purpose_id": 1, "disable_opt_out": false,
               "purpose_name": {"en": "Statistics", "de": "Statistik"},
               "sdks": [{"sdk_name": {"en": "Meter", "de": "Meter"}, "sdk_description": {"de": "Zählt."}}]}]})"),
       {"purposes[0].sdks[0].sdk_description: has no text in en",
        "banner_config.categories.eu.accept: has no text in de"}},
      {bannerWith(R"({"accept": {"en": "Accept", "sw": "Kubali"}})"),
       {"purposes[0].purpose_name: has no text in sw", "i18n: has no labels in sw; they are English there"}},
      {documentWith(R"({"i18n": {"l0":{},"l1":{},"l2":{},"l3":{},"l4":{},"l5":{},"l6":{},"l7":{},"l8":{}},
               "purposes": [{"purpose_id": 1, "disable_opt_out": false, "purpose_name":
               {"en":"","l0":"","l1":"","l2":"","l3":"","l4":"","l5":"","l6":"","l7":"","l8":""}}]})"),
       {"banner_config.categories.eu.accept: has no text in l0, l1, l2, l3, l4, l5, l6, l7 and others"}},
      {documentWith(R"({
               "purposes": [{"purpose_id": 1, "purpose_name": {"en": "Statistics"}, "disable_opt_out": false,
                 "sdks": [{"website": "www.meter.example"}, {"website": " HTTPS://meter.example/ "}]}],
               "banner_config": {"categories": {
                   "eu": {"compliance_type": "opt-in", "privacy_notice_link": "mailto:privacy@reader.example",
                          "dsr_portal_link": "https://user@reader.example/"},
                   "zz": {"compliance_type": "opt-out", "privacy_notice_link": "https://straße.example/ä",
                          "dsr_portal_link": ""}},
                 "names_map": {}, "locations": {}}})"),
       {R"(purposes[0].sdks[0].website: the web view refuses "www.meter.example": it is not a complete address)",
        R"(banner_config.categories.eu.privacy_notice_link: the web view refuses "mailto:privacy@reader.example": )"
        "it is neither http nor https",
        R"(banner_config.categories.eu.dsr_portal_link: the web view refuses "https://user@reader.example/": )"
        "it carries a user name",
        R"(banner_config.categories.zz.dsr_portal_link: the web view refuses "": it is empty)"}},
      {bannerWith(R"json({"accept": {"en":
               "<a class='x'HREF = 'tel:1'>1</a><a href=/two>2</a><a href=\"https://reader.example/?a&amp;b\">3</a>"},
               "reject": {"en": "<a data-href='tel:4'>href</a> <a href='javascript:go"}})json"),
       {R"(banner_config.categories.eu.accept.en: the web view refuses "tel:1": it is neither http nor https)",
        R"(banner_config.categories.eu.accept.en: the web view refuses "/two": it is not a complete address)",
        R"(banner_config.categories.eu.reject.en: the web view refuses "javascript:go": )"
        "it is neither http nor https"}},
      {documentWith(R"({"settings_prompt": {"permissions": {"a\u001b[2J\nb": true, "0123456789012345678901234567)"
                    R"(89012345678901234567890123456789012é": true}}})"),
       {"settings_prompt.permissions.0123456789012345678901234567890123456789012345678901234567890"
        "12...: no listed permission has this key",
        R"(settings_prompt.permissions.a\x1b[2J\x0ab: no listed permission has this key)"}}};
  std::vector<std::string> names;
  std::string expected;
  for (const auto& [document, warnings] : cases) {
    const auto& name = names.emplace_back("document" + std::to_string(names.size()));
    setFileBytes(file(name), document);
    expected += name + ": ok\n";
    for (const auto& warning : warnings) expected += name + ": warning: " + warning + "\n";
  }
  EXPECT_EQ(run(names, 0, true), expected);
}

TEST_F(Validate, TellsIntervalsThatCannotBeRead) {
  std::vector<std::string> names;
  std::string expected;
  const auto add = [&](const std::string& interval, bool isReadable) {
    const auto& name = names.emplace_back("document" + std::to_string(names.size()));
    setFileBytes(file(name),
                 bannerWith(boost::json::serialize(boost::json::object{{"banner_reappearance_time", interval}})));
    expected += name + ": ok\n";
    if (isReadable) return;
    expected += name + ": warning: banner_config.categories.eu.banner_reappearance_time: \"" + interval +
                "\" is not a count, one blank and \"month\" or \"year\"; twelve months apply\n";
  };
  for (const auto* interval : {"12 month", "12 MONTH", "012 month", "1 Year", "6 month", "2 year", "0 month"}) {
    add(interval, true);
  }
  for (const auto* interval : {"", "12", "12 months", "12  month", "month", "12 week", "-1 year", "12 month "}) {
    add(interval, false);
  }
  EXPECT_EQ(run(names, 0, true), expected);
}

}  // namespace
}  // namespace quillon::test
