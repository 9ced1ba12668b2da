// The check of configurations: what is wrong with them, what the lint finds, and what is not fair.
#include <numeric>
#include <set>

#include "tests/support/Contains.h"
#include "tests/tools/ToolTest.h"

namespace quillon::test {
namespace {

namespace json = boost::json;

struct Validate : ToolTest {
  // What it prints of these files, without the name of their folder.
  std::string run(const std::vector<std::string>& names, int status, bool lint = false) const {
    std::vector<std::string> arguments{"validate"};
    for (const auto& name : names) arguments.push_back(file(name));
    if (lint) arguments.push_back("--lint");
    auto [ended, printed, errors] = runTool(arguments);
    EXPECT_EQ(ended, status);
    for (auto at = printed.find(file("")); at != std::string::npos; at = printed.find(file(""))) {
      printed.erase(at, file("").size());
    }
    return printed;
  }
  // What is found in a document that applications take.
  json::array findings(const char* option, const json::value& document) const {
    write("document", json::serialize(document));
    const auto printed = json::parse(runTool({"validate", option, "--format", "json", file("document")}).output);
    EXPECT_EQ(printed.at_pointer("/files/0/valid"), true) << document;
    return printed.at_pointer("/files/0/findings").as_array();
  }
  // The paths and texts of what the lint finds, a line each in alphabetical order; "~" stands for the place of the
  // banners.
  std::string lint(const json::value& document) const {
    constexpr std::string_view banners = "banner_config.categories.";
    std::multiset<std::string> found;
    for (const auto& finding : findings("--lint", document)) {
      EXPECT_EQ(finding.at("level"), "warning");
      std::string path(finding.at("path").as_string());
      if (path.starts_with(banners)) path.replace(0, banners.size(), "~");
      found.insert(path + ": " + finding.at("text").as_string().c_str() + "\n");
    }
    return std::accumulate(found.begin(), found.end(), std::string());
  }
};

// Objects are merged but for empty ones, which replace like all else.
void merge(json::value& into, const json::value& changes) {
  if (!into.is_object() || !changes.is_object() || changes.get_object().empty()) {
    into = changes;
    return;
  }
  for (const auto& [key, value] : changes.get_object()) merge(into.get_object()[key], value);
}

// A document in which the lint finds nothing, with these changes.
json::value with(std::string_view changes) {
  auto document = json::parse(R"({
    "version": 7, "x-auth-token": "token",
    "purposes": [{"purpose_id": 1, "purpose_name": {"en": "Statistics"}, "disable_opt_out": false}],
    "permissions": [{"permission_id": "NSCameraUsageDescription"}],
    "banner_config": {
      "categories": {"eu": {"compliance_type": "opt-in", "banner_text": {"en": "We count."},
        "accept": {"en": "Accept"}, "reject": {"en": "Reject"}}},
      "names_map": {"Europe": "eu"}, "locations": {"DE": "Europe", "default": "eu"}
    }
  })");
  const auto changed = json::parse(changes).as_object();
  for (const auto& [key, value] : changed) merge(document.as_object()[key], value);
  return document;
}
std::string textWith(std::string_view changes) {
  return json::serialize(with(changes));
}

TEST_F(Validate, NamesEveryErrorOfEachFileAndItsPlace) {
  write("good", textWith("{}"));
  write("typos", R"({
  "purposes": [
    {"purpose_id": 1},
    {"purpose_id": "two", "sdks": {}, "consent_status": "Granted"}
  ],
  "version": 1.5, "version": 2,
  "i18n": {"é": {"close": null}},
  "banner_config": {"categories": {"eu": {"compliance_type": "never", "compliance": {"a": 1}}}}
})");
  write("cut", R"({"version":1)");
  write("deep", std::string(65, '['));
  write("list", "[]");
  write("huge", "");
  std::filesystem::resize_file(file("huge"), std::size_t{40} << 20);
  std::string deepest;
  for (int i = 0; i < 64; ++i) deepest += "[0]";
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
good: ok
missing:1:1: error: document: cannot be read: No such file or directory [file]
cut:1:13: error: version: incomplete JSON [syntax]
deep:1:65: error: )" + deepest + R"(: nested deeper than 64 levels [syntax]
list:1:1: error: document: expected an object [type]
huge:1:1: error: document: larger than 32 MiB [syntax]
.:1:1: error: document: holds no config.json and no config_LANGUAGE.json [file]
)");
  write("[marks]", "{\"i18n\":{\"en\":{\"a\u009b31m\u202eb\":1}}}");
  const std::string marks = run({"[marks]"}, 1);
  EXPECT_TRUE(marks.starts_with("[marks]:1:26: error: i18n.en.a\\u009b31m\\u202eb: ")) << marks;
}

TEST_F(Validate, ManyFindingsAreCutButNoErrorIsHidden) {
  std::string document = "{";
  for (int i = 0; i < 3000; ++i) document += "\"key" + std::to_string(i) + "\": 1, ";
  write("many", document + R"("version": "x"})");
  const std::string printed = run({"many"}, 1, true);
  EXPECT_TRUE(contains(printed, "error: version: expected an integer"));
  EXPECT_TRUE(contains(printed, "note: document: and 2001 more findings"));
}

TEST_F(Validate, TheExitStatusIsThatOfTheWorstFindingThatCounts) {
  write("good", textWith("{}"));
  write("poor", textWith(R"({"x-auth-token": null})"));
  write("bad", R"({"version": "x"})");
  EXPECT_EQ(run({"poor"}, 0), "poor: ok\n") << "no warning unasked";
  EXPECT_EQ(runTool({"validate", "--lint", "--fail-on", "note", file("good"), QUILLON_SAMPLE_CONFIGURATION}).status, 0);
  EXPECT_EQ(runTool({"validate", "--lint", file("poor")}).status, 0);
  EXPECT_EQ(runTool({"validate", "--lint", "--fail-on", "warning", file("good"), file("poor")}).status, 2);
  EXPECT_EQ(runTool({"validate", "--lint", "--fail-on", "warning", file("bad"), file("poor")}).status, 1);
}

TEST_F(Validate, AFolderIsEveryConfigurationInItOnce) {
  std::filesystem::create_directories(file("site/a/live"));
  for (const auto* name : {"config.json", "config_de.json"}) write("site/a/live/" + std::string(name), "{}");
  write("site/location.json", "[]");
  std::filesystem::create_symlink("config.json", file("site/a/live/config_fr.json"));
  std::filesystem::create_directory_symlink(".", file("site/b"));
  EXPECT_EQ(run({"site"}, 0), "site/a/live/config.json: ok\nsite/a/live/config_de.json: ok\n");
}

TEST_F(Validate, AMaterialChangeNeedsAGreaterVersion) {
  const std::string change = R"("purposes": [{"purpose_id": 1, "purpose_name": {"en": "Advertising"}}])";
  for (const auto& [folder, changes] : {std::pair<std::string, std::string>("live", "{}"),
                                        {"draft", "{" + change + "}"},
                                        {"risen", R"({"version": 8, )" + change + "}"},
                                        {"cosmetic", R"({"i18n": {"en": {"close": "Shut"}}})"}}) {
    std::filesystem::create_directories(file(folder));
    write(folder + "/config.json", textWith(changes));
  }
  const auto against = [this](const std::string& live, const std::string& draft) {
    return runTool({"validate", "--against", file(live), file(draft)});
  };
  EXPECT_TRUE(contains(against("live", "draft").output,
                       "warning: version: is not greater than 7, which is live, but purpose 1 \"Advertising\" has "
                       "another name [version-rises]"));
  for (const std::string sound : {"risen", "cosmetic"}) {
    EXPECT_EQ(against("live/config.json", sound + "/config.json").output, file(sound + "/config.json") + ": ok\n");
  }
  EXPECT_EQ(against("missing", "risen").status, 1);
}

TEST_F(Validate, FindingsArePrintedForPrograms) {
  write("a b", "{\"version\": 7,\n  \"verzion\": 1, \"purposes\": 3}");
  const auto parsed = [this](const char* format) {
    const auto ended = runTool({"validate", "--lint", "--format", format, file("a b"), file("none")});
    EXPECT_EQ(ended.status, 1);
    return json::parse(ended.output);
  };
  const auto printed = parsed("json");
  EXPECT_EQ(printed.at_pointer("/files/0/valid"), false);
  EXPECT_EQ(printed.at_pointer("/files/0/findings"), json::parse(R"([
    {"level": "warning", "rule": "unknown-key", "path": "verzion", "line": 2, "column": 3,
     "text": "the SDK knows no such key; did you mean \"version\"?"},
    {"level": "error", "rule": "type", "path": "purposes", "line": 2, "column": 29, "text": "expected an array"}])"));
  const auto sarif = parsed("sarif");
  EXPECT_EQ(sarif.at("version"), "2.1.0");
  const auto& result = sarif.at_pointer("/runs/0/results/1");
  EXPECT_EQ(result.at("ruleId"), "type");
  EXPECT_EQ(result.at("level"), "error");
  const auto& place = result.at_pointer("/locations/0/physicalLocation");
  EXPECT_EQ(place.at("region"), json::parse(R"({"startLine": 2, "startColumn": 29})"));
  EXPECT_EQ(place.at_pointer("/artifactLocation/uri").as_string(), "file://" + file("a%20b"));
}

TEST_F(Validate, LintReportsExactlyWhatIsWrong) {
  const std::pair<const char*, const char*> cases[] = {
      {R"({"version": 8})", ""},
      {R"({"purposes": [], "banner_config": {"locations": {}, "categories": {"eu": {"accept": null}}}})",
       R"(banner_config.locations.default: is missing; users elsewhere get category "eu"
purposes: there are none; nothing is asked
~eu.accept: is missing; the button has its built-in label where i18n has none
)"},
      {R"({"banner_config": null})",
       R"(banner_config: is missing; there is no banner to show
)"},
      {R"({"banner_config": {"categories": {}, "names_map": {}, "locations": {}}})",
       R"(banner_config.categories: is empty; there is no banner to show
)"},
      {R"({"version": null, "x-auth-token": "", "logo_base64": "zzz=", "purpose": [],
      "purposes": [{}, {"purpose_id": 4, "purpose_name": {"en": "A"}, "disable_opt_out": false, "sdks": [
                          {"website": "www.meter.example"}]},
                   {"purpose_id": 4, "purpose_name": {"en": "C"}, "disable_opt_out": true}],
      "att_or_gad_config": {"purpose_ids": [4, 9]}, "privacy_signal_purposes": [9],
      "gcm_config": {"default_mapping": {"analytics_storage": [7, 4], "ad_storage": [4]},
                     "region_overrides": {"US#CA, US#VA": {"ad_user_data": [4, -8]},
                                          "US#CA, CA, Bavaria": {}}},
      "permissions": [{"permission_id": "SUBJECT_ID"}, {"permission_id": "-12"}, {"name": "Camera"},
                      {"permission_id": "NSCameraUsageDescripton"}, {"permission_id": "NSCameraUsageDescription"}],
      "settings_prompt": {"permissions": {"NSCameraUsageDescription": true, "a\u001b[2J\nb": true}}})",
       R"(att_or_gad_config.purpose_ids[1]: there is no purpose 9
gcm_config.default_mapping.analytics_storage[0]: there is no purpose 7
gcm_config.region_overrides.US#CA, CA, Bavaria: "Bavaria" is no place as the location look-up names it, such as "DE" or "US#CA"
gcm_config.region_overrides.US#CA, US#VA.ad_user_data[1]: there is no purpose -8
logo_base64: is no picture that is shown: a PNG, JPEG or GIF file of ordinary size, as base64
permissions[0].permission_id: "SUBJECT_ID" is a name under which the SDK keeps a value of its own
permissions[0].permission_id: "SUBJECT_ID" is none of the device's permissions
permissions[1].permission_id: "-12" is none of the device's permissions
permissions[1].permission_id: "-12" is the name under which the decision on a purpose is kept
permissions[2].permission_id: is missing; nothing can be found out about this permission
permissions[3].permission_id: "NSCameraUsageDescripton" is none of the device's permissions; did you mean "NSCameraUsageDescription"?
privacy_signal_purposes[0]: there is no purpose 9
purpose: the SDK knows no such key; did you mean "purposes"?
purposes[0].disable_opt_out: is missing; selecting all purposes leaves this one out
purposes[0].purpose_id: is missing; no decision about this purpose can be kept
purposes[0].purpose_name: is missing; the user cannot tell what is asked
purposes[1].sdks[0].website: the web view refuses "www.meter.example": it is not a complete address
purposes[2].purpose_id: purposes[1] has the same
settings_prompt.permissions.a\x1b[2J\nb: no listed permission has this key
version: is missing; no later publication can ask users again
x-auth-token: is missing; no consent can be uploaded
)"},
      {R"({"i18n": {"de": null, "en": {"clos": "Shut", "fact": "%1"}}, "purposes": [{"purpose_id": 1, "disable_opt_out": false,
      "purpose_name": {"en": "Statistics", "de": "Statistik"},
      "sdks": [{"sdk_name": {"en": "Meter", "de": " "}, "sdk_description": {"de": "Zählt."}}]}],
      "banner_config": {"categories": {"eu": {"accept": {"sw": "Kubali"}}}}})",
       R"(i18n.en.clos: the screens have no such label; did you mean "close"?
i18n.en.fact: lacks %1 or %2; our pattern is used
i18n: has no labels in sw; they are English there
purposes[0].purpose_name: has no text in sw
purposes[0].sdks[0].sdk_description: has no text in en, sw
purposes[0].sdks[0].sdk_name: has no text in de, sw
~eu.accept: has no text in de
~eu.banner_text: has no text in de, sw
~eu.reject: has no text in de, sw
)"},
      {R"({"i18n": {"bg":null,"cs":null,"da":null,"el":null,"es":null,"et":null,"hi":null,"fi":null,"ga":null},
      "purposes": [{"purpose_id": 1, "disable_opt_out": false, "purpose_name":
        {"en":"","bg":"","cs":"","da":"","el":"","es":"","et":"","hi":"","fi":"","ga":""}}]})",
       R"(~eu.accept: has no text in bg, cs, da, el, es, et, fi, ga and others
~eu.banner_text: has no text in bg, cs, da, el, es, et, fi, ga and others
~eu.reject: has no text in bg, cs, da, el, es, et, fi, ga and others
)"},
      {R"({"i18n": {"en-us": {}, "German": null, "pt-BR": null}, "banner_config": {
      "categories": {
        "eu": {"compliance_type": null, "privacy_notice_link": "mailto:privacy@reader.example",
          "dsr_portal_link": "", "baner_text": {},
          "banner_reappearance_time": "12 months",
          "accept": {"en": "<a class='x'HREF = 'tel:1'>1</a><a href=\"https://r.example/?a&amp;b\">2</a>"},
          "reject": {"en": "<a data-href='tel:4'>href</a> <a href='javascript:go"},
          "palette": {"button_background": "#1D3A5F", "button_text": "#FFFFFF", "button_border": "#FFFFFF",
            "banner_background": "#FFFFFF", "banner_text": "#777777", "banner_links": "#1D3A5F",
            "preference_center_footer_background": "#FFFFFF", "preference_center_footer_selector": "#FFFFFF"}},
        "zz": {"compliance_type": "opt-in", "privacy_notice_link": "https://straße.example/ä",
          "hide_accept_toggle": true, "button_shape": "outlined",
          "palette": {"button_background": "#1D3A5F", "button_text": "#FFFFFF", "button_border": "#FFFFFF",
            "banner_background": "FFFFFF", "banner_text": "#00f", "banner_links": "#1D3A5F",
            "preference_center_footer_background": "", "preference_center_footer_selector": "#FFFFFF"}}},
      "names_map": {"Asia": "as"}, "locations": {"DE": "zz", "JP": "Asia", "US-CA": "eu",
        "UK": "eu", "DE#BY": "eu", "US#ZZ": "eu"}}})",
       R"(banner_config.locations.JP: "Asia" leads to no category
banner_config.locations.UK: "UK" is no place as the location look-up names it; did you mean "GB"?
banner_config.locations.US#ZZ: "ZZ" is no part of "US"
banner_config.locations.US-CA: "US-CA" is no place as the location look-up names it; did you mean "US#CA"?
banner_config.names_map.Asia: "as" is no category
i18n.German: "German" is no language; did you mean "de"?
i18n.pt-BR: "pt-BR" is no language as the SDK spells it; did you mean "pt-br"?
~eu.accept.en: the web view refuses "tel:1": it is neither http nor https
~eu.baner_text: the SDK knows no such key; did you mean "banner_text"?
~eu.banner_reappearance_time: "12 months" is not a count, one blank and "month" or "year"; twelve months apply
~eu.compliance_type: is missing; notice-only applies
~eu.dsr_portal_link: the web view refuses "": it is empty
~eu.palette.banner_text: has a contrast of 4.4:1 on banner_background; text is legible from 4.5:1 on
~eu.privacy_notice_link: the web view refuses "mailto:privacy@reader.example": it is neither http nor https
~eu.reject.en: the web view refuses "javascript:go": it is neither http nor https
~zz.banner_text: is missing; the banner does not say what it is about
~zz.hide_accept_toggle: is true; opt-in needs a button by which users agree
~zz.palette.banner_text: is "#00f", which is no colour such as "#1D3A5F"
~zz.palette.button_border: has a contrast of 1.0:1 on banner_background; an outline is visible from 3.0:1 on
~zz.reject: is missing; the button has its built-in label where i18n has none
)"},
  };
  for (const auto& [changes, warnings] : cases) EXPECT_EQ(lint(with(changes)), warnings) << changes;
}

// The sample asks fairly; each case changes one thing, as products did that were found to deceive.
TEST_F(Validate, DeceptionIsCaughtByTheRuleAboutIt) {
  const std::string banner = "/banner_config/categories/eu/";
  const struct {
    const char* what;
    std::string place;
    const char* value;
    const char* rule;  // none: what was decided to be fair stays so
  } cases[] = {
      {"nothing", "/version", "1", ""},
      {"no choice in Europe", banner + "compliance_type", R"("notice-only")", "fair-opt-in"},
      {"refusing on the second layer", banner + "reject/en", R"("Manage my options")", "fair-refusal"},
      {"two buttons that accept", banner + "reject/de", R"("Alle akzeptieren")", "fair-refusal"},
      {"a loud button beside a quiet one", banner + "accept/en", R"("YES, ACCEPT ALL")", "fair-answers"},
      {"one that calls out", banner + "accept/en", R"("Accept all!")", "fair-answers"},
      {"ticked beforehand", "/purposes/3/consent_status", R"("granted")", "fair-default"},
      {"going on is consent", banner + "banner_text/en", R"("We use data. By continuing to use the app you agree.")",
       "fair-silence"},
      {"no way to decide by purpose", banner + "preference_center_link", "null", "fair-withdrawal"},
      {"asked again until they agree", banner + "banner_reappearance_time", R"("1 month")", "fair-pause"},
      {"no notice on the first layer", banner + "privacy_notice_link", "null", "fair-notice"},
      {"refusing in another language", banner + "reject", R"({"en": "Reject all"})", "fair-languages"},
      {"guilt", banner + "reject/en", R"("No thanks, I don’t care about journalism. Reject")", "fair-words"},
      {"hidden in plain sight", banner + "palette/banner_links", R"("#F5F5F5")", "fair-sight"},
      {"switches that look alike", banner + "palette/toggle_secondary", R"("#1B7A43")", "fair-sight"},
      {"advertising as essential", "/purposes/3/disable_opt_out", "true", "fair-essential"},
      {"recipients in the dark", "/purposes/3/hide_details", "true", "fair-information"},
      {"a purpose without explanation", "/purposes/1/purpose_description", "null", "fair-information"},
      {"a plain refusal", banner + "reject/en", R"("Continue without accepting")", ""},
  };
  for (const auto& [what, place, value, rule] : cases) {
    SCOPED_TRACE(what);
    auto document = json::parse(fileBytes(QUILLON_SAMPLE_CONFIGURATION));
    const auto key = place.rfind('/');
    document.at_pointer(place.substr(0, key)).as_object()[place.substr(key + 1)] = json::parse(value);
    std::set<std::string> broken;
    for (const auto& finding : findings("--fairness", document)) broken.emplace(finding.at("rule").as_string());
    EXPECT_EQ(broken.contains(rule), *rule != '\0');
    EXPECT_LE(broken.size(), *rule == '\0' ? 0u : 2u);
  }
}

}  // namespace
}  // namespace quillon::test
