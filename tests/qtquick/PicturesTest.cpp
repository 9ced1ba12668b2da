// The screens beside pictures of how they are meant to look. After a change that is meant, look at the new pictures
// after a run with QUILLON_RENEW_PICTURES=1, which writes them in place of the references.
#include <gtest/gtest.h>

#include <QDir>
#include <QImage>
#include <QLibraryInfo>
#include <QTest>
#include <QVersionNumber>
#include <boost/json/parse.hpp>
#include <filesystem>
#include <string>

#include "tests/qtquick/ScreenWorld.h"
#include "ui/qtquick/ConsentBannerAdapter.h"

namespace quillon::test {
namespace {

// Black where a picture differs from its reference, and by how many pixels.
QImage differenceOf(const QImage& actual, const QImage& reference, int& pixels) {
  QImage difference(actual.size(), QImage::Format_Grayscale8);
  difference.fill(Qt::white);
  constexpr int noise = 8;
  for (int y = 0; y < actual.height(); ++y) {
    for (int x = 0; x < actual.width(); ++x) {
      const QRgb left = actual.pixel(x, y);
      const QRgb right = reference.pixel(x, y);
      if (std::max({std::abs(qRed(left) - qRed(right)), std::abs(qGreen(left) - qGreen(right)),
                    std::abs(qBlue(left) - qBlue(right))}) <= noise) {
        continue;
      }
      difference.setPixel(x, y, qRgb(0, 0, 0));
      ++pixels;
    }
  }
  return difference;
}

struct Gallery;

struct Look {
  // Of its picture: an occasion, if any, the screen, language, shape of the buttons, position, palette, surroundings,
  // size and scale of the text.
  std::string name;
  void (*begin)(Gallery&) = nullptr;  // the occasion, on the complete screen
};

struct Gallery : ScreenWorld {
  explicit Gallery(const std::string& name) {
    const QStringList values = QString::fromStdString(name).split('-').last(8);
    const auto text = [&](int i) { return values[i].toStdString(); };
    const bool isDark = values[5] == "dark";
    presenter = QtScreenPresenter::make({.isDark = isDark, .textScale = values[7].toDouble(), .isMotionReduced = true});
    window->resize(values[6].section('x', 0, 0).toInt(), values[6].section('x', 1).toInt());
    window->setColor(isDark ? QColor("#26292e") : QColor("#d9dde2"));
    language = text(1);
    document = boost::json::parse(fileBytes(QUILLON_SAMPLE_CONFIGURATION)).as_object();
    auto& banner = bannerOf(document);
    banner["button_shape"] = text(2);
    banner["banner_position"] = text(3);
    banner["palette_theme"] = values[4].toInt();
    banner.erase("palette");  // which would win
    start();
    if (values[0] == "preferences") {
      world.sdk->presentPreferenceCenter();
    } else if (values[0] == "prompt") {
      world.sdk->presentSettingPrompt(VantariKey::cameraUsageDescription);
    } else {
      presenter->presentBanner(world.sdk->screens());
    }
  }
  QImage picture() {
    EXPECT_TRUE(await([&] { return isShown(); })) << world.log();
    // Wherever another test has left the pointer.
    QTest::mouseMove(window.get(), {1, 1});
    settle();
    window->grabWindow();
    settle();
    return window->grabWindow();
  }
};

void load(Gallery& gallery) {
  QMetaObject::invokeMethod(gallery.top()->property("model").value<QObject*>(), "load");
}
void fail(Gallery& gallery) {
  std::filesystem::remove_all(gallery.world.file().parent_path());
  load(gallery);
}
void keepLoading(Gallery& gallery) {
  const auto* banner = gallery.top()->property("banner").value<ConsentBannerAdapter*>();
  banner->model()->bannerConfigResult.set(ConsentSDKResult<BannerConfig>::loading());
}
void takeThemeOfHost(Gallery& gallery) {
  const CustomFont heading{"Noto Serif", 20, 700};
  const CustomFont text{"Noto Serif", 16, 400};
  gallery.world.sdk->registerFonts(heading, text, heading, text);
  gallery.world.sdk->registerColors(
      {"#fbe4ea", "#b3123f", "#f3b9c8", "#fff7f9", "#3b0a18", "#b3123f", "#fdeef2", "#f3b9c8", {}, {}, {}, {}});
  load(gallery);
}
// Every value meets every other.
const Look looks[] = {
    {"banner-fr-rounded-center-2-light-390x844-1"},
    {"banner-de-rounded-bottom-3-light-320x568-2"},
    {"banner-en-rounded-center-5-dark-390x844-2"},
    {"banner-en-square-center-1-dark-844x390-2"},
    {"banner-ar-square-bottom-2-light-820x1180-2"},
    {"banner-ar-pill-bottom-1-light-320x568-1"},
    {"banner-de-pill-bottom-4-light-844x390-2"},
    {"banner-de-outlined-bottom-2-dark-390x844-1"},
    {"banner-en-outlined-center-4-dark-320x568-2"},
    {"banner-ar-outlined-bottom-5-light-844x390-1"},
    {"banner-ar-edgeless-center-1-light-390x844-2"},
    {"banner-de-edgeless-center-4-light-820x1180-1"},
    {"preferences-de-rounded-center-1-dark-844x390-1"},
    {"preferences-ar-rounded-center-4-dark-820x1180-1"},
    {"preferences-ar-square-center-3-dark-820x1180-1"},
    {"preferences-fr-square-bottom-4-dark-390x844-1"},
    {"preferences-de-square-center-5-dark-320x568-1"},
    {"preferences-fr-pill-center-2-dark-320x568-2"},
    {"preferences-en-pill-bottom-3-light-390x844-1"},
    {"preferences-en-pill-center-5-dark-820x1180-2"},
    {"preferences-fr-outlined-bottom-1-dark-820x1180-1"},
    {"preferences-de-outlined-center-3-light-820x1180-2"},
    {"preferences-en-edgeless-bottom-2-dark-844x390-1"},
    {"preferences-fr-edgeless-bottom-3-dark-844x390-1"},
    {"preferences-fr-edgeless-bottom-5-dark-320x568-2"},
    {"loading-preferences-de-rounded-bottom-1-dark-320x568-2", keepLoading},
    {"failure-banner-ar-rounded-bottom-1-light-320x568-2", fail},
    {"theme-banner-de-pill-bottom-1-light-390x844-1", takeThemeOfHost},
    {"theme-preferences-ar-rounded-bottom-1-light-390x844-1", takeThemeOfHost},
    {"prompt-de-outlined-center-2-dark-320x568-2"},
};

TEST(Pictures, EveryScreenLooksAsInItsReference) {
  const bool isRenewal = qEnvironmentVariableIsSet("QUILLON_RENEW_PICTURES");
  const QString actuals = QDir::currentPath() + "/pictures/";
  const std::string page = fileBytes(QUILLON_SCREENS_FOLDER "../screens.md");
  // The Arabic font of Debian 13 is another one.
  const bool isFontAnother = QLibraryInfo::version() >= QVersionNumber(6, 5);
  for (const auto& [look, begin] : looks) {
    SCOPED_TRACE(look);
    EXPECT_TRUE(page.contains("(screens/" + look + ".png)")) << "docs/screens.md does not show it";
    const QString name = QString::fromStdString(look);
    if (isFontAnother && name.contains("-ar-")) continue;
    Gallery gallery(look);
    if (begin) {
      gallery.picture();
      begin(gallery);
    }
    const QImage actual = gallery.picture();
    const QString file = QUILLON_SCREENS_FOLDER + name + ".png";
    if (isRenewal) {
      constexpr int smallest = 0;  // of the files that the same picture may become
      EXPECT_TRUE(actual.convertToFormat(QImage::Format_RGB888).save(file, "PNG", smallest)) << file.toStdString();
      continue;
    }
    const QImage reference(file);
    ASSERT_EQ(actual.size(), reference.size());
    int pixels = 0;
    const QImage difference = differenceOf(actual, reference, pixels);
    // Noise of the rendering is neither strong nor large.
    if (pixels * 2000 <= actual.width() * actual.height()) continue;
    QDir().mkpath(actuals);
    actual.save(actuals + name + ".png");
    difference.save(actuals + name + "-difference.png");
    ADD_FAILURE() << pixels << " pixels differ: see " << actuals.toStdString();
  }
}

}  // namespace
}  // namespace quillon::test
