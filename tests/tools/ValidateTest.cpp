#include <gtest/gtest.h>

#include <algorithm>
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
  // The paths and texts of what the lint finds in a document, in alphabetical order.
  std::vector<std::string> lint(const std::string& document) const {
    setFileBytes(file("document"), document);
    const auto printed =
        boost::json::parse(runTool({"validate", "--lint", "--format", "json", file("document")}).output);
    EXPECT_EQ(printed.at_pointer("/files/0/valid"), true) << document;
    std::vector<std::string> found;
    for (const auto& finding : printed.at_pointer("/files/0/findings").as_array()) {
      EXPECT_EQ(finding.at("level"), "warning");
      found.emplace_back(finding.at("path").as_string()) += ": ";
      found.back() += finding.at("text").as_string();
    }
    std::ranges::sort(found);
    return found;
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
    "version": 7, "x-auth-token": "token",
    "purposes": [{"purpose_id": 1, "purpose_name": {"en": "Statistics"}, "disable_opt_out": false}],
    "permissions": [{"permission_id": "NSCameraUsageDescription"}],
    "banner_config": {
      "categories": {"eu": {"compliance_type": "opt-in", "banner_text": {"en": "We count."},
        "accept": {"en": "Accept"}, "reject": {"en": "Reject"}}},
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

TEST_F(Validate, NamesEveryErrorOfEachFileAndItsPlace) {
  setFileBytes(file("good"), documentWith("{}"));
  setFileBytes(file("typos"), R"({
  "purposes": [
    {"purpose_id": 1},
    {"purpose_id": "two", "sdks": {}, "consent_status": "Granted"}
  ],
  "version": 1.5, "version": 2,
  "i18n": {"é": {"close": null}},
  "banner_config": {"categories": {"eu": {"compliance_type": "never", "compliance": {"a": 1, "a": 2}}}}
})");
  setFileBytes(file("cut"), R"({"version":1)");
  setFileBytes(file("deep"), std::string(65, '['));
  setFileBytes(file("list"), "[]");
  setFileBytes(file("huge"), "");
  std::filesystem::resize_file(file("huge"), std::size_t{40} << 20);
  EXPECT_EQ(run({"good", "typos", "good", "missing", "cut", "deep", "list", "huge", "."}, 1), R"(good: ok
typos:4:20: error: purposes[1].purpose_id: expected an integer [type]
typos:4:35: error: purposes[1].sdks: expected an array [type]
typos:4:57: error: purposes[1].consent_status: unknown value "Granted"; did you mean "granted"? [value]
typos:6:14: error: version: expected an integer [type]
typos:6:19: error: version: duplicate key [duplicate-key]
typos:7:27: error: i18n.é.close: expected a string [type]
typos:8:20: error: banner_config.names_map: is required [required]
typos:8:20: error: banner_config.locations: is required [required]
typos:8:62: error: banner_config.categories.eu.compliance_type: unknown value "never"; expected "notice-only", "opt-in", "opt-out" [value]
typos:8:94: error: banner_config.categories.eu.compliance.a: duplicate key [duplicate-key]
good: ok
missing:1:1: error: document: cannot be read: No such file or directory [file]
cut:1:13: error: version: incomplete JSON [syntax]
deep:1:65: error: [0][0][0][0][0][0][0][0][0][0][0][0][0][0][0][0][0][0][0][0][0][0][0][0][0][0][0][0][0][0][0][0][0][0][0][0][0][0][0][0][0][0][0][0][0][0][0][0][0][0][0][0][0][0][0][0][0][0][0][0][0][0][0][0]: nested deeper than 64 levels [syntax]
list:1:1: error: document: expected an object [type]
huge:1:1: error: document: larger than 32 MiB [syntax]
.:1:1: error: document: holds no config.json and no config_LANGUAGE.json [file]
)");
  EXPECT_EQ(run({"good", "good"}, 0), "good: ok\ngood: ok\n");
  setFileBytes(file("[marks]"), "{\"i18n\":{\"en\":{\"a\u009b31m\u202eb\":1}}}");
  const std::string marks = run({"[marks]"}, 1);
  EXPECT_TRUE(marks.starts_with("[marks]:1:26: error: i18n.en.a\\u009b31m\\u202eb: ")) << marks;
}

TEST_F(Validate, ManyFindingsAreCutButNoErrorIsHidden) {
  std::string document = "{";
  for (int i = 0; i < 3000; ++i) document += "\"key" + std::to_string(i) + "\": 1, ";
  setFileBytes(file("many"), document + R"("version": "x"})");
  const std::string printed = run({"many"}, 1, true);
  EXPECT_NE(printed.find("error: version: expected an integer"), std::string::npos);
  EXPECT_NE(printed.find("note: document: and 2001 more findings"), std::string::npos);
}

TEST_F(Validate, TheExitStatusIsThatOfTheWorstFindingThatCounts) {
  setFileBytes(file("good"), documentWith("{}"));
  setFileBytes(file("poor"), documentWith(R"({"x-auth-token": null})"));
  setFileBytes(file("bad"), R"({"version": "x"})");
  EXPECT_EQ(runTool({"validate", "--lint", "--fail-on", "note", file("good")}).status, 0);
  EXPECT_EQ(runTool({"validate", "--lint", file("poor")}).status, 0);
  EXPECT_EQ(runTool({"validate", "--lint", "--fail-on", "warning", file("good"), file("poor")}).status, 2);
  EXPECT_EQ(runTool({"validate", "--lint", "--fail-on", "warning", file("bad"), file("poor")}).status, 1);
}

TEST_F(Validate, AFolderIsEveryConfigurationInItOnce) {
  std::filesystem::create_directories(file("site/a/live"));
  setFileBytes(file("site/a/live/config.json"), documentWith("{}"));
  setFileBytes(file("site/a/live/config_de.json"), "{}");
  setFileBytes(file("site/location.json"), "[]");
  std::filesystem::create_symlink("config.json", file("site/a/live/config_fr.json"));
  std::filesystem::create_directory_symlink(".", file("site/b"));
  EXPECT_EQ(run({"site"}, 0), "site/a/live/config.json: ok\nsite/a/live/config_de.json: ok\n");
}

TEST_F(Validate, AMaterialChangeNeedsAGreaterVersion) {
  std::filesystem::create_directories(file("live"));
  std::filesystem::create_directories(file("draft"));
  setFileBytes(file("live/config.json"), documentWith("{}"));
  const std::string changed = R"("purposes": [{"purpose_id": 1, "purpose_name": {"en": "Advertising"}}])";
  setFileBytes(file("draft/config.json"), documentWith("{" + changed + "}"));
  setFileBytes(file("draft/config_de.json"), documentWith("{}"));
  setFileBytes(file("risen"), documentWith(R"({"version": 8, )" + changed + "}"));
  setFileBytes(file("cosmetic"), documentWith(R"({"i18n": {"en": {"close": "Shut"}}})"));
  const std::string finding =
      "warning: version: is not greater than 7, which is live, but purpose 1 \"Advertising\" has "
      "another name [version-rises]";
  const auto against = [this](const std::string& live, const std::string& draft) {
    return runTool({"validate", "--against", file(live), file(draft)}).output;
  };
  EXPECT_NE(against("live/config.json", "draft/config.json").find(finding), std::string::npos);
  EXPECT_NE(against("live", "draft").find(finding), std::string::npos);
  EXPECT_EQ(against("live/config.json", "risen"), file("risen") + ": ok\n");
  EXPECT_EQ(against("live/config.json", "cosmetic"), file("cosmetic") + ": ok\n");
  EXPECT_EQ(runTool({"validate", "--against", file("missing"), file("risen")}).status, 1);
}

TEST_F(Validate, FindingsArePrintedForPrograms) {
  setFileBytes(file("a b"), "{\"version\": 7,\n  \"verzion\": 1, \"purposes\": 3}");
  const auto parsed = [this](const char* format) {
    const auto run = runTool({"validate", "--lint", "--format", format, file("a b"), file("none")});
    EXPECT_EQ(run.status, 1);
    return boost::json::parse(run.output);
  };
  const auto json = parsed("json");
  EXPECT_EQ(json.at_pointer("/files/0/valid"), false);
  EXPECT_EQ(json.at_pointer("/files/0/findings"), boost::json::parse(R"([
    {"level": "warning", "rule": "unknown-key", "path": "verzion", "line": 2, "column": 3,
     "text": "the SDK knows no such key; did you mean \"version\"?"},
    {"level": "error", "rule": "type", "path": "purposes", "line": 2, "column": 29, "text": "expected an array"}])"));
  EXPECT_EQ(json.at_pointer("/files/1/findings/0/rule"), "file");
  const auto sarif = parsed("sarif");
  EXPECT_EQ(sarif.at("version"), "2.1.0");
  const auto& result = sarif.at_pointer("/runs/0/results/1");
  EXPECT_EQ(result.at("ruleId"), "type");
  EXPECT_EQ(result.at("level"), "error");
  EXPECT_EQ(result.at_pointer("/locations/0/physicalLocation/region"),
            boost::json::parse(R"({"startLine": 2, "startColumn": 29})"));
  EXPECT_EQ(result.at_pointer("/locations/0/physicalLocation/artifactLocation/uri").as_string(),
            "file://" + file("a%20b"));
  // Every rule that is named is described.
  for (const auto& found : sarif.at_pointer("/runs/0/results").as_array()) {
    const auto& rules = sarif.at_pointer("/runs/0/tool/driver/rules").as_array();
    EXPECT_TRUE(std::ranges::any_of(rules, [&](const auto& rule) { return rule.at("id") == found.at("ruleId"); }));
  }
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
        R"(permissions[0].permission_id: "SUBJECT_ID" is none of the device's permissions)",
        R"(permissions[1].permission_id: "CDN_ETAG" is none of the device's permissions)",
        R"(permissions[2].permission_id: "-12" is none of the device's permissions)",
        R"(permissions[3].permission_id: "012" is none of the device's permissions)",
        R"(permissions[4].permission_id: "subject_id" is none of the device's permissions)",
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
        "banner_config.categories.eu.banner_text: is missing; the banner does not say what it is about",
        "banner_config.categories.eu.accept: is missing; the button has its built-in label where i18n has none",
        "banner_config.categories.eu.reject: is missing; the button has its built-in label where i18n has none",
        R"(banner_config.names_map.Asia: "as" is no category)"}},
      {documentWith(R"({"i18n": {"de": null}, "purposes": [{"purpose_id": 1, "disable_opt_out": false,
               "purpose_name": {"en": "Statistics", "de": "Statistik"},
               "sdks": [{"sdk_name": {"en": "Meter", "de": " "}, "sdk_description": {"de": "Zählt."}}]}]})"),
       {"purposes[0].sdks[0].sdk_name: has no text in de", "purposes[0].sdks[0].sdk_description: has no text in en",
        "banner_config.categories.eu.accept: has no text in de",
        "banner_config.categories.eu.banner_text: has no text in de",
        "banner_config.categories.eu.reject: has no text in de"}},
      {bannerWith(R"({"accept": {"en": "Accept", "sw": "Kubali"}})"),
       {"purposes[0].purpose_name: has no text in sw", "banner_config.categories.eu.banner_text: has no text in sw",
        "banner_config.categories.eu.reject: has no text in sw", "i18n: has no labels in sw; they are English there"}},
      {documentWith(
           R"({"i18n": {"bg":null,"cs":null,"da":null,"el":null,"es":null,"et":null,"hi":null,"fi":null,"ga":null},
               "purposes": [{"purpose_id": 1, "disable_opt_out": false, "purpose_name":
               {"en":"","bg":"","cs":"","da":"","el":"","es":"","et":"","hi":"","fi":"","ga":""}}]})"),
       {"banner_config.categories.eu.accept: has no text in bg, cs, da, el, es, et, fi, ga and others",
        "banner_config.categories.eu.banner_text: has no text in bg, cs, da, el, es, et, fi, ga and others",
        "banner_config.categories.eu.reject: has no text in bg, cs, da, el, es, et, fi, ga and others"}},
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
        "banner_config.categories.eu.banner_text: is missing; the banner does not say what it is about",
        "banner_config.categories.eu.accept: is missing; the button has its built-in label where i18n has none",
        "banner_config.categories.eu.reject: is missing; the button has its built-in label where i18n has none",
        "banner_config.categories.zz.banner_text: is missing; the banner does not say what it is about",
        "banner_config.categories.zz.accept: is missing; the button has its built-in label where i18n has none",
        "banner_config.categories.zz.reject: is missing; the button has its built-in label where i18n has none",
        "banner_config.locations.default: is missing; users elsewhere get category \"eu\"",
        R"(banner_config.categories.zz.dsr_portal_link: the web view refuses "": it is empty)"}},
      {bannerWith(R"json({"accept": {"en":
               "<a class='x'HREF = 'tel:1'>1</a><a href=/two>2</a><a href=\"https://reader.example/?a&amp;b\">3</a>"},
               "reject": {"en": "<a data-href='tel:4'>href</a> <a href='javascript:go"}})json"),
       {R"(banner_config.categories.eu.accept.en: the web view refuses "tel:1": it is neither http nor https)",
        R"(banner_config.categories.eu.accept.en: the web view refuses "/two": it is not a complete address)",
        R"(banner_config.categories.eu.reject.en: the web view refuses "javascript:go": )"
        "it is neither http nor https"}},
      {documentWith(R"({"version": null, "logo_base64": "zzz=", "purpose": []})"),
       {"version: is missing; no later publication can ask users again",
        "logo_base64: is no picture that is shown: a PNG, JPEG or GIF file of ordinary size, as base64",
        R"(purpose: the SDK knows no such key; did you mean "purposes"?)"}},
      {documentWith(R"({"permissions": [{"permission_id": "NSCameraUsageDescripton"}], "i18n": {"en": {"clos": "Shut",
               "fact": "%1"}}, "gcm_config": {"default_mapping": {"ad_storge": []},
               "region_overrides": {"US#CA, CA, Bavaria": {}}}})"),
       {"permissions[0].permission_id: \"NSCameraUsageDescripton\" is none of the device's permissions; did you mean "
        "\"NSCameraUsageDescription\"?",
        R"(i18n.en.clos: the screens have no such label; did you mean "close"?)",
        "i18n.en.fact: lacks %1 or %2; our pattern is used",
        R"(gcm_config.default_mapping.ad_storge: the SDK knows no such key; did you mean "ad_storage"?)",
        "gcm_config.region_overrides.US#CA, CA, Bavaria: \"Bavaria\" is no place as the location look-up names it, "
        "such as \"DE\" or \"US#CA\""}},
      {documentWith(R"({"i18n": {"en-us": {}, "German": null, "pt-BR": null, "iw": null}, "banner_config": {
               "categories": {"eu": {"compliance_type": "opt-in", "hide_accept_toggle": true, "baner_text": {},
                 "banner_text": {"en": "We count."}, "reject": {"en": "Reject"}}},
               "names_map": {}, "locations": {"default": "eu", "Germany": "eu", "US-CA": "eu", "us": "eu", "UK": "eu",
                 "DE#BY": "eu", "US#ZZ": "eu"}}})"),
       {R"(i18n.German: "German" is no language; did you mean "de"?)",
        R"(i18n.pt-BR: "pt-BR" is no language as the SDK spells it; did you mean "pt-br"?)",
        R"(i18n.iw: "iw" is no language; did you mean "he"?)",
        R"(banner_config.categories.eu.baner_text: the SDK knows no such key; did you mean "banner_text"?)",
        "banner_config.categories.eu.hide_accept_toggle: is true; opt-in needs a button by which users agree",
        R"(banner_config.locations.Germany: "Germany" is no place as the location look-up names it; did you mean "DE"?)",
        R"(banner_config.locations.US-CA: "US-CA" is no place as the location look-up names it; did you mean "US#CA"?)",
        R"(banner_config.locations.us: "us" is no place as the location look-up names it; did you mean "US"?)",
        R"(banner_config.locations.UK: "UK" is no place as the location look-up names it; did you mean "GB"?)",
        R"(banner_config.locations.US#ZZ: "ZZ" is no part of "US")"}},
      {documentWith(R"({"settings_prompt": {"permissions": {"a\u001b[2J\nb": true, "0123456789012345678901234567)"
                    R"(89012345678901234567890123456789012é": true}}})"),
       {"settings_prompt.permissions.0123456789012345678901234567890123456789012345678901234567890"
        "12...: no listed permission has this key",
        R"(settings_prompt.permissions.a\x1b[2J\x0ab: no listed permission has this key)"}}};
  for (auto [document, warnings] : cases) {
    std::ranges::sort(warnings);
    EXPECT_EQ(lint(document), warnings) << document;
  }
}

TEST_F(Validate, TellsIntervalsThatCannotBeRead) {
  const auto warnings = [this](const std::string& interval) {
    return lint(bannerWith(boost::json::serialize(boost::json::object{{"banner_reappearance_time", interval}})));
  };
  for (const auto* interval : {"12 month", "12 MONTH", "012 month", "1 Year", "6 month", "2 year", "0 month"}) {
    EXPECT_EQ(warnings(interval), std::vector<std::string>()) << interval;
  }
  for (const std::string interval : {"", "12", "12 months", "12  month", "month", "12 week", "-1 year", "12 month "}) {
    EXPECT_EQ(warnings(interval),
              std::vector{"banner_config.categories.eu.banner_reappearance_time: \"" + interval +
                          "\" is not a count, one blank and \"month\" or \"year\"; twelve months apply"});
  }
}

}  // namespace
}  // namespace quillon::test
