// quillon-consent preview writes the picture of every screen.
#include <gtest/gtest.h>
#include <unistd.h>

#include <QFile>
#include <QImage>
#include <QProcess>
#include <map>

#include "tests/support/EngineLeaks.h"
#include "tests/support/TemporaryFolder.h"

namespace quillon::test {
namespace {

// How many points of the middle third have another colour than most: what is written or drawn there.
int inkOf(const QImage& picture) {
  std::map<QRgb, int> colours;
  int all = 0;
  for (int y = picture.height() / 3; y < picture.height() * 2 / 3; ++y) {
    for (int x = picture.width() / 8; x < picture.width() * 7 / 8; ++x, ++all) ++colours[picture.pixel(x, y)];
  }
  int most = 0;
  for (const auto& [colour, count] : colours) most = std::max(most, count);
  return all - most;
}

// A tool whose files are all in a folder of its own.
struct PreviewTest : testing::Test {
  PreviewTest() {
    for (const char* name : {"HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_DATA_HOME", "XDG_RUNTIME_DIR"}) {
      environment.insert(name, folder.path().c_str());
    }
    // The engine does not run in its sandbox as root.
    if (geteuid() == 0) environment.insert("QTWEBENGINE_CHROMIUM_FLAGS", "--no-sandbox --disable-gpu");
    // The engine deletes its objects under another size, which is not ours to mend.
    environment.insert("ASAN_OPTIONS", "new_delete_type_mismatch=0");
    setFileBytes(folder.path() / "leaks", kEngineLeaks);
    environment.insert("LSAN_OPTIONS", "print_suppressions=0:suppressions=" + file("leaks"));
  }
  QString file(const char* name) const { return QString::fromStdString((folder.path() / name).string()); }
  // Its exit status and output; its errors are the test's own.
  std::pair<int, std::string> run(const QStringList& arguments, const QString& program = QUILLON_CONSENT) const {
    QProcess process;
    process.setProcessEnvironment(environment);
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(program, arguments);
    EXPECT_TRUE(process.waitForFinished(120'000));
    return {process.exitCode(), process.readAllStandardOutput().toStdString()};
  }

  const TemporaryFolder folder;
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
};

TEST_F(PreviewTest, WritesAPictureOfEveryScreen) {
  struct Case {
    const char* screen;
    QStringList options;
    QSize size = {390, 844};
  };
  const Case cases[] = {
      {"banner", {}},      {"banner", {"--language", "ar", "--size", "320x568", "--dark", "--scale", "2"}, {320, 568}},
      {"preferences", {}}, {"permissions", {}},
      {"purpose", {}},     {"prompt", {}},
#ifdef QUILLON_WEB_VIEW
      {"web", {}},         {"blocked", {}},
#endif
  };
  std::vector<QImage> pictures;
  for (const auto& [screen, options, size] : cases) {
    SCOPED_TRACE(screen);
    const QString out = file("picture.png");
    QFile::remove(out);
    EXPECT_EQ(
        run(QStringList{"preview", QUILLON_SAMPLE_CONFIGURATION, "--screen", screen, "--out", out} + options).first, 0);
    const QImage picture(out);
    EXPECT_EQ(picture.size(), size);
    EXPECT_GT(inkOf(picture), 300);
    for (const QImage& other : pictures) EXPECT_NE(picture, other);
    pictures.push_back(picture);
  }
}

// Two languages, two places and two themes of a banner and a preference centre with one purpose.
TEST_F(PreviewTest, WritesASheetOfAllScreensWithTheirContrast) {
  setFileBytes(folder.path() / "config.json",
               R"({"version": 1, "purposes": [{"purpose_id": 1, "purpose_name": {"en": "Plans", "de": "Pläne"}}],
    "banner_config": {"names_map": {}, "locations": {"default": "in", "US": "out"}, "categories": {
      "in": {"compliance_type": "opt-in", "banner_text": {"en": "<b>May</b> we?"}, "accept": {"en": "Yes & more"},
        "palette": {"button_background": "#777777", "button_text": "#777777", "button_border": "#777777",
          "banner_background": "#FFFFFF", "banner_text": "#111111", "banner_links": "#111111",
          "preference_center_footer_background": "#FFFFFF", "preference_center_footer_selector": "#111111"}},
      "out": {"compliance_type": "opt-out", "banner_text": {"en": "We do."}}}}})");
  EXPECT_EQ(run({"preview", file("config.json"), "--all", "--out", file("sheet.html")}).first, 0);
  const auto page = QByteArray::fromStdString(fileBytes(folder.path() / "sheet.html"));
  for (const auto& [part, count] : {std::pair("<h2>", 2 * 2 * 2),
                                    {"<img alt=\"banner\"", 8},
                                    {"<img alt=\"preferences\"", 8},
                                    {"<img alt=\"purpose\"", 8},
                                    {"<img ", 24},
                                    {"least contrast ", 24}}) {
    EXPECT_EQ(page.count(part), count) << part;
  }
  EXPECT_TRUE(page.contains("Yes &amp; more: "));
}

// Our screens hold the answers alike, so another program draws what would be found.
TEST_F(PreviewTest, AnswersThatDoNotWeighTheSameOnTheScreenAreFound) {
  struct Case {
    const char* second;  // the answer beside one of 80 by 48 pixels, weight 500, contrast 9 and prominence 9
    bool isFound;
  };
  const Case cases[] = {{"88, 48, 500, 9, 9", false}, {"89, 48, 500, 9, 9", true}, {"80, 53, 500, 9, 9", true},
                        {"80, 48, 400, 9, 9", true},  {"80, 48, 500, 8, 9", true}, {"80, 48, 500, 9, 4.5", true}};
  const TemporaryFolder programs;  // the other one has caches with their names
  const QString tool = QString::fromStdString((programs.path() / "quillon-consent").string());
  ASSERT_TRUE(QFile::copy(QUILLON_CONSENT, tool));
  const auto validate = [&](const QString& program) {
    return run({"validate", "--drawn", "--fail-on", "warning", QUILLON_SAMPLE_CONFIGURATION}, program);
  };
  EXPECT_EQ(validate(QUILLON_CONSENT).first, 0);
  // What cannot be measured does not pass for fair.
  EXPECT_TRUE(validate(tool).second.contains("cannot be measured in de"));
  for (const auto& [second, isFound] : cases) {
    const auto program = programs.path() / "quillon-consent-preview";
    setFileBytes(program, std::string(R"(#!/usr/bin/python3
import json, sys
keys = ["width", "height", "weight", "contrast", "prominence"]
answers = [dict(zip(keys, values), text="Answer") for values in ([80, 48, 500, 9, 9], [)") +
                              second +
                              R"(])]
for line in iter(sys.stdin.buffer.readline, b""):
    sys.stdin.buffer.read(json.loads(line)["bytes"])
    print(json.dumps({"bytes": 0, "answers": answers}), flush=True)
)");
    std::filesystem::permissions(program, std::filesystem::perms::owner_all);
    const auto [status, output] = validate(tool);
    EXPECT_EQ(status, isFound ? 2 : 0) << second << "\n" << output;
    EXPECT_EQ(output.contains("[fair-drawn]"), isFound) << second;
  }
}

}  // namespace
}  // namespace quillon::test
