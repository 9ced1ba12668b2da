// quillon-consent preview writes the picture of every screen.
#include <gtest/gtest.h>
#include <unistd.h>

#include <QFile>
#include <QImage>
#include <QProcess>
#include <map>

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

// Of a process that keeps to the folder.
QProcessEnvironment environmentIn(const TemporaryFolder& folder) {
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  for (const char* name : {"HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_DATA_HOME", "XDG_RUNTIME_DIR"}) {
    environment.insert(name, folder.path().c_str());
  }
  // The engine does not run in its sandbox as root.
  if (geteuid() == 0) environment.insert("QTWEBENGINE_CHROMIUM_FLAGS", "--no-sandbox --disable-gpu");
  // The engine deletes its objects under another size, and leaves some behind, which is not ours to mend.
  environment.insert("ASAN_OPTIONS", "new_delete_type_mismatch=0");
  const std::string suppressions = (folder.path() / "leaks").string();
  QFile known(QString::fromStdString(suppressions));
  EXPECT_TRUE(known.open(QFile::WriteOnly));
  known.write("leak:libQt6WebEngineCore\nleak:libfontconfig\n");
  known.close();
  environment.insert("LSAN_OPTIONS", QString::fromStdString("print_suppressions=0:suppressions=" + suppressions));
  return environment;
}

TEST(Preview, WritesAPictureOfEveryScreen) {
  const TemporaryFolder folder;
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
  const auto environment = environmentIn(folder);
  std::vector<QImage> pictures;
  for (const auto& [screen, options, size] : cases) {
    SCOPED_TRACE(screen);
    const QString file = QString::fromStdString((folder.path() / "picture.png").string());
    QFile::remove(file);
    QProcess preview;
    preview.setProcessEnvironment(environment);
    preview.start(QUILLON_CONSENT,
                  QStringList{"preview", QUILLON_SAMPLE_CONFIGURATION, "--screen", screen, "--out", file} + options);
    ASSERT_TRUE(preview.waitForFinished(60'000));
    EXPECT_EQ(preview.exitCode(), 0) << preview.readAllStandardError().toStdString();
    const QImage picture(file);
    EXPECT_EQ(picture.size(), size);
    EXPECT_GT(inkOf(picture), 300);
    for (const QImage& other : pictures) EXPECT_NE(picture, other);
    pictures.push_back(picture);
  }
}

// Two languages, two places and two themes of a banner and a preference centre with one purpose.
TEST(Preview, WritesASheetOfAllScreensWithTheirContrast) {
  const TemporaryFolder folder;
  const QString file = QString::fromStdString((folder.path() / "config.json").string());
  const QString out = QString::fromStdString((folder.path() / "sheet.html").string());
  QFile configuration(file);
  ASSERT_TRUE(configuration.open(QFile::WriteOnly));
  configuration.write(R"({"version": 1, "purposes": [{"purpose_id": 1, "purpose_name": {"en": "Plans", "de": "Pläne"}}],
    "banner_config": {"names_map": {}, "locations": {"default": "in", "US": "out"}, "categories": {
      "in": {"compliance_type": "opt-in", "banner_text": {"en": "<b>May</b> we?"}, "accept": {"en": "Yes & more"},
        "palette": {"button_background": "#777777", "button_text": "#777777", "button_border": "#777777",
          "banner_background": "#FFFFFF", "banner_text": "#111111", "banner_links": "#111111",
          "preference_center_footer_background": "#FFFFFF", "preference_center_footer_selector": "#111111"}},
      "out": {"compliance_type": "opt-out", "banner_text": {"en": "We do."}}}}})");
  configuration.close();
  QProcess preview;
  preview.setProcessEnvironment(environmentIn(folder));
  preview.start(QUILLON_CONSENT, {"preview", file, "--all", "--out", out});
  ASSERT_TRUE(preview.waitForFinished(120'000));
  EXPECT_EQ(preview.exitCode(), 0) << preview.readAllStandardError().toStdString();
  QFile sheet(out);
  ASSERT_TRUE(sheet.open(QFile::ReadOnly));
  const QByteArray page = sheet.readAll();
  EXPECT_EQ(page.count("<h2>"), 2 * 2 * 2);
  EXPECT_EQ(page.count("<img alt=\"banner\""), 8);
  EXPECT_EQ(page.count("<img alt=\"preferences\""), 8);
  EXPECT_EQ(page.count("<img alt=\"purpose\""), 8);
  EXPECT_EQ(page.count("<img "), 24);
  EXPECT_EQ(page.count("least contrast "), 24);
  EXPECT_TRUE(page.contains("Yes &amp; more: "));
}

// Our screens hold the answers alike, so another program draws what would be found.
TEST(Preview, AnswersThatDoNotWeighTheSameOnTheScreenAreFound) {
  struct Case {
    const char* second;  // the answer beside one of 80 by 48 pixels, weight 500, contrast 9 and prominence 9
    bool isFound;
  };
  const Case cases[] = {{"88, 48, 500, 9, 9", false}, {"89, 48, 500, 9, 9", true}, {"80, 53, 500, 9, 9", true},
                        {"80, 48, 400, 9, 9", true},  {"80, 48, 500, 8, 9", true}, {"80, 48, 500, 9, 4.5", true}};
  const TemporaryFolder folder;
  const TemporaryFolder programs;  // the other one has caches with their names
  const auto in = [&programs](const char* name) { return QString::fromStdString((programs.path() / name).string()); };
  ASSERT_TRUE(QFile::copy(QUILLON_CONSENT, in("quillon-consent")));
  const auto validate = [&](const QString& program) {
    QProcess process;
    process.setProcessEnvironment(environmentIn(folder));
    process.start(program, {"validate", "--drawn", "--fail-on", "warning", QUILLON_SAMPLE_CONFIGURATION});
    EXPECT_TRUE(process.waitForFinished(60'000));
    return std::pair(process.exitCode(), process.readAllStandardOutput());
  };
  EXPECT_EQ(validate(QUILLON_CONSENT).first, 0);
  // What cannot be measured does not pass for fair.
  EXPECT_TRUE(validate(in("quillon-consent")).second.contains("cannot be measured in de"));
  for (const auto& [second, isFound] : cases) {
    QFile program(in("quillon-consent-preview"));
    ASSERT_TRUE(program.open(QFile::WriteOnly)) << program.errorString().toStdString();
    program.write(R"(#!/usr/bin/python3
import json, sys
keys = ["width", "height", "weight", "contrast", "prominence"]
answers = [dict(zip(keys, values), text="Answer") for values in ([80, 48, 500, 9, 9], [)");
    program.write(second);
    program.write(R"(])]
for line in iter(sys.stdin.buffer.readline, b""):
    sys.stdin.buffer.read(json.loads(line)["bytes"])
    print(json.dumps({"bytes": 0, "answers": answers}), flush=True)
)");
    program.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    program.close();
    const auto [status, output] = validate(in("quillon-consent"));
    EXPECT_EQ(status, isFound ? 2 : 0) << second << "\n" << output.toStdString();
    EXPECT_EQ(output.contains("[fair-drawn]"), isFound) << second;
  }
}

}  // namespace
}  // namespace quillon::test
