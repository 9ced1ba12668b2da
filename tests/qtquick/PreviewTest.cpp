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
  ASSERT_TRUE(known.open(QFile::WriteOnly));
  known.write("leak:libQt6WebEngineCore\nleak:libfontconfig\n");
  known.close();
  environment.insert("LSAN_OPTIONS", QString::fromStdString("print_suppressions=0:suppressions=" + suppressions));
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

}  // namespace
}  // namespace quillon::test
