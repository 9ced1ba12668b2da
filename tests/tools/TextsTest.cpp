// The texts of a configuration in the files of translators, and configurations that are made anew.
#include "tests/support/Contains.h"
#include "tests/tools/ToolTest.h"

namespace quillon::test {
namespace {

namespace json = boost::json;

// Written as no program writes it: mixed indentation, escapes, several members in a line.
constexpr const char* handWritten = R"({
    "version": 7,   "name": "Re\u0061der",
    "purposes": [
        {"purpose_id": 12, "purpose_name": {"en": "Statistics, \"counted\"", "de": "Statistik"}, "disable_opt_out": false},
        { "purpose_id": 3,
          "purpose_name": {
              "en": "=Ads"
          }, "disable_opt_out" : false }
    ],
    "i18n": {"de": null, "fr": {}},
    "banner_config": {"categories": {"eu": {"banner_text": {"en": "a\r\n<b>b</b> & c", "de": ""}}},
      "names_map": {}, "locations": {}}
})";

struct Texts : ToolTest {
  Texts() { write("config.json", handWritten); }

  std::string exported(const std::string& format, const std::string& language) const {
    const auto run = runTool({"texts", "export", "--format", format, "--language", language, file("config.json")});
    EXPECT_EQ(run.status, 0);
    return run.output;
  }
  int imported(const std::string& translations) const {
    write("translations", translations);
    return runTool({"texts", "import", file("config.json"), file("translations")}).status;
  }
  std::string current() const { return read("config.json"); }
};

std::string replaced(std::string text, const std::vector<std::pair<std::string, std::string>>& changes) {
  for (const auto& [what, by] : changes) {
    const auto at = text.find(what);
    EXPECT_NE(at, std::string::npos) << what;
    if (at != std::string::npos) text.replace(at, what.size(), by);
  }
  return text;
}

TEST_F(Texts, TheRoundTripChangesNothing) {
  for (const std::string format : {"csv", "xliff"}) {
    EXPECT_EQ(imported(exported(format, "de")), 0) << format;
    EXPECT_EQ(current(), handWritten) << format;
    write("sample", runTool({"texts", "export", "--format", format, QUILLON_SAMPLE_CONFIGURATION}).output);
    const auto run = runTool({"texts", "import", QUILLON_SAMPLE_CONFIGURATION, file("sample"), "--out", "-"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.output, fileBytes(QUILLON_SAMPLE_CONFIGURATION)) << format;
  }
}

TEST_F(Texts, WhatIsMissingIsMarked) {
  const auto csv = exported("csv", "de");
  for (const auto* row : {"purposes[12].purpose_name,\"Statistics, \"\"counted\"\"\",Statistik,\r\n",
                          "purposes[3].purpose_name,'=Ads,,de\r\n", "i18n.close,Close,Schließen,\r\n"}) {
    EXPECT_TRUE(contains(csv, row));
  }
}

TEST_F(Texts, OnlyWhatIsNewIsWrittenAsAPersonWouldHave) {
  const auto csv = replaced(
      exported("csv", "sw"),
      {{"purposes[12].purpose_name,\"Statistics, \"\"counted\"\"\",", "purposes[12].purpose_name,Numbers,Liczby"},
       {"purposes[3].purpose_name,'=Ads,", "purposes[3].purpose_name,'=Ads,Reklamy"},
       {"i18n.close,Close,", "i18n.close,Close,Zamknij"},
       {"i18n.details,Details,", "i18n.details,Details,Więcej"}});
  ASSERT_EQ(imported(csv), 0);
  EXPECT_EQ(current(),
            replaced(handWritten, {{R"("Statistics, \"counted\"", "de": "Statistik"})",
                                    R"("Numbers", "de": "Statistik", "sw": "Liczby"})"},
                                   {R"("en": "=Ads")", "\"en\": \"=Ads\",\n              \"sw\": \"Reklamy\""},
                                   {R"("fr": {}})", R"("fr": {}, "sw": {"details":"Więcej","close":"Zamknij"}})"}}));
}

TEST_F(Texts, AnXliffMayComeBackTranslated) {
  ASSERT_EQ(imported(replaced(exported("xliff", "de"),
                              {{"<source>=Ads</source>\n        <target state=\"needs-translation\"></target>",
                                "<source>=Ads</source><target><![CDATA[Werbung <3]]></target>"}})),
            0);
  EXPECT_EQ(json::parse(current()).at_pointer("/purposes/1/purpose_name/de"), "Werbung <3");
}

TEST_F(Texts, ATranslationWithoutItsPlaceChangesNothing) {
  const std::string cases[] = {
      "id,de\npurposes[99].purpose_name,Neu\npurposes[3].purpose_name,Werbung\n",  // no such purpose
      "id,de\n\"purposes[3].purpose_name,Werbung\n",                               // an open quote
      "id,de\npurposes[3].purpose_name,Werbung,more\n",                            // too many columns
      "<xliff",
      replaced(exported("xliff", "de"), {{"<source>=Ads</source>", "<source>Other</source>"}}),  // of another text
      replaced(exported("xliff", "de"), {{"<source>=Ads</source>", "<source>=Ads<x/></source>"}}),
  };
  for (const auto& translations : cases) {
    EXPECT_EQ(imported(translations), 1) << translations;
    EXPECT_EQ(current(), handWritten) << translations;
  }
}

struct Init : Texts {
  ToolRun init(const std::string& name, std::vector<std::string> options) const {
    options.insert(options.begin(), {"init", file(name)});
    return runTool(options);
  }
};

TEST_F(Init, WhatItWritesLintsClean) {
  const auto run =
      init("new", {"--name",           "Fit",
                   "--token",          "secret",
                   "--privacy-notice", "https://fit.example/privacy",
                   "--language",       "en,de,fr",
                   "--purpose",        "essential,measurement,advertising,personalisation,diagnostics,media",
                   "--opt-in",         "EU",
                   "--opt-out",        "US",
                   "--notice-only",    "US#CA,JP",
                   "--elsewhere",      "opt-out",
                   "--permission",     "NSHealthShareUsageDescription,NSMotionUsageDescription"});
  EXPECT_EQ(run.status, 0) << run.errors;
  EXPECT_EQ(runTool({"validate", "--lint", "--fairness", file("new")}).output, file("new") + ": ok\n");
  EXPECT_EQ(json::parse(read("new")).at_pointer("/banner_config/locations/PL"), "opt-in");
}

TEST_F(Init, NothingIsReplacedAndNothingImpossibleIsWritten) {
  EXPECT_EQ(init("config.json", {"--purpose", "media"}).status, 1);
  EXPECT_EQ(current(), handWritten);
  for (const std::vector<std::string>& options : {std::vector<std::string>{"--purpose", "media", "--opt-in", "Germany"},
                                                  {"--purpose", "media", "--permission", "NSCamera"},
                                                  {}}) {
    EXPECT_EQ(init("new", options).status, 1);
    EXPECT_FALSE(std::filesystem::exists(file("new")));
  }
}

}  // namespace
}  // namespace quillon::test
