#include <gtest/gtest.h>

#include <boost/json.hpp>
#include <filesystem>
#include <string>

#include "tests/support/TemporaryFolder.h"
#include "tests/tools/ToolProcess.h"

namespace quillon::test {
namespace {

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

struct Texts : testing::Test {
  Texts() { setFileBytes(file("config.json"), handWritten); }

  std::string file(const std::string& name) const { return folder.path() / name; }
  std::string exported(const std::string& format, const std::string& language) const {
    const auto run = runTool({"texts", "export", "--format", format, "--language", language, file("config.json")});
    EXPECT_EQ(run.status, 0);
    return run.output;
  }
  int imported(const std::string& translations) const {
    setFileBytes(file("translations"), translations);
    return runTool({"texts", "import", file("config.json"), file("translations")}).status;
  }
  std::string current() const { return fileBytes(file("config.json")); }

  const TemporaryFolder folder{TemporaryFolder::fastParent()};
};

std::string replaced(std::string text, const std::string& what, const std::string& by) {
  const auto at = text.find(what);
  EXPECT_NE(at, std::string::npos) << what;
  return at == std::string::npos ? text : text.replace(at, what.size(), by);
}

TEST_F(Texts, TheRoundTripChangesNothing) {
  for (const std::string format : {"csv", "xliff"}) {
    EXPECT_EQ(imported(exported(format, "de")), 0) << format;
    EXPECT_EQ(current(), handWritten) << format;
    const auto sample = runTool({"texts", "export", "--format", format, QUILLON_SAMPLE_CONFIGURATION});
    setFileBytes(file("sample"), sample.output);
    const auto run = runTool({"texts", "import", QUILLON_SAMPLE_CONFIGURATION, file("sample"), "--out", "-"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.output, fileBytes(QUILLON_SAMPLE_CONFIGURATION)) << format;
  }
}

TEST_F(Texts, WhatIsMissingIsMarked) {
  const auto csv = exported("csv", "de");
  EXPECT_NE(csv.find("purposes[12].purpose_name,\"Statistics, \"\"counted\"\"\",Statistik,\r\n"), std::string::npos)
      << csv;
  EXPECT_NE(csv.find("purposes[3].purpose_name,'=Ads,,de\r\n"), std::string::npos) << csv;
  EXPECT_NE(csv.find("i18n.close,Close,Schließen,\r\n"), std::string::npos) << csv;
  const auto xliff = exported("xliff", "de");
  EXPECT_NE(xliff.find("<source>=Ads</source>"), std::string::npos);
  EXPECT_NE(xliff.find("<target state=\"needs-translation\""), std::string::npos);
}

TEST_F(Texts, OnlyWhatIsNewIsWrittenAsAPersonWouldHave) {
  auto csv = exported("csv", "sw");
  csv = replaced(csv, "purposes[12].purpose_name,\"Statistics, \"\"counted\"\"\",",
                 "purposes[12].purpose_name,Numbers,Liczby");
  csv = replaced(csv, "purposes[3].purpose_name,'=Ads,", "purposes[3].purpose_name,'=Ads,Reklamy");
  csv = replaced(csv, "i18n.close,Close,", "i18n.close,Close,Zamknij");
  csv = replaced(csv, "i18n.details,Details,", "i18n.details,Details,Więcej");
  ASSERT_EQ(imported(csv), 0);
  auto expected = replaced(handWritten, R"("Statistics, \"counted\"", "de": "Statistik"})",
                           R"("Numbers", "de": "Statistik", "sw": "Liczby"})");
  expected = replaced(expected, R"("en": "=Ads")", "\"en\": \"=Ads\",\n              \"sw\": \"Reklamy\"");
  expected = replaced(expected, R"("fr": {}})", R"("fr": {}, "sw": {"details":"Więcej","close":"Zamknij"}})");
  EXPECT_EQ(current(), expected);
}

TEST_F(Texts, AnXliffMayComeBackTranslated) {
  auto xliff = exported("xliff", "de");
  xliff = replaced(xliff, "<source>=Ads</source>\n        <target state=\"needs-translation\"></target>",
                   "<source>=Ads</source><target><![CDATA[Werbung <3]]></target>");
  ASSERT_EQ(imported(xliff), 0);
  EXPECT_EQ(boost::json::parse(current()).at_pointer("/purposes/1/purpose_name/de"), "Werbung <3");
}

TEST_F(Texts, ATranslationWithoutItsPlaceChangesNothing) {
  const std::string cases[] = {
      "id,de\npurposes[99].purpose_name,Neu\npurposes[3].purpose_name,Werbung\n",  // no such purpose
      "id,German\npurposes[3].purpose_name,Werbung\n",                             // no language
      "id,de\n\"purposes[3].purpose_name,Werbung\n",                               // an open quote
      "id,de\npurposes[3].purpose_name,Werbung,more\n",                            // too many columns
      "purposes[3].purpose_name,Werbung\n",                                        // no header
      "<xliff",
      "<html/>",
      replaced(exported("xliff", "de"), "<source>=Ads</source>", "<source>Other</source>"),  // of another text
      replaced(exported("xliff", "de"), "<source>=Ads</source>", "<source>=Ads<x/></source>"),
  };
  for (const auto& translations : cases) {
    EXPECT_EQ(imported(translations), 1) << translations;
    EXPECT_EQ(current(), handWritten) << translations;
  }
}

struct Init : Texts {
  std::string validated(const std::vector<std::string>& options) const {
    std::vector<std::string> arguments{"init",    file("new"), "--name",           "Fit",
                                       "--token", "secret",    "--privacy-notice", "https://fit.example/privacy"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    std::filesystem::remove(file("new"));
    const auto run = runTool(arguments);
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.output, "");
    return runTool({"validate", "--lint", "--fairness", file("new")}).output;
  }
};

TEST_F(Init, WhatItWritesLintsClean) {
  const std::string fine = file("new") + ": ok\n";
  EXPECT_EQ(validated({"--purpose", "essential,measurement"}), fine);
  EXPECT_EQ(validated({"--language", "en,de,fr", "--purpose",
                       "essential,measurement,advertising,personalisation,diagnostics,media", "--opt-in", "EU",
                       "--opt-out", "US", "--notice-only", "US#CA,JP", "--elsewhere", "opt-out", "--permission",
                       "NSHealthShareUsageDescription,NSMotionUsageDescription,NSUserNotificationsUsageDescription"}),
            fine);
  const auto document = boost::json::parse(fileBytes(file("new")));
  EXPECT_EQ(document.at_pointer("/banner_config/locations/PL"), "opt-in");
  EXPECT_EQ(document.at_pointer("/banner_config/locations/US"), "opt-out");
}

TEST_F(Init, NothingIsReplacedAndNothingImpossibleIsWritten) {
  EXPECT_EQ(runTool({"init", file("config.json"), "--purpose", "media"}).status, 1);
  EXPECT_EQ(current(), handWritten);
  for (const std::vector<std::string>& options :
       {std::vector<std::string>{"--opt-in", "Germany"}, {"--language", "German"}, {"--permission", "NSCamera"}, {}}) {
    std::vector<std::string> arguments{"init", file("new")};
    arguments.insert(arguments.end(), options.begin(), options.end());
    if (!options.empty()) arguments.insert(arguments.end(), {"--purpose", "media"});
    EXPECT_EQ(runTool(arguments).status, 1);
    EXPECT_FALSE(std::filesystem::exists(file("new")));
  }
}

}  // namespace
}  // namespace quillon::test
