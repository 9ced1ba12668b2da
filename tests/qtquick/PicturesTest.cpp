// The screens beside pictures of how they are meant to look. After a change that is meant, look at the new pictures
// after a run with QUILLON_RENEW_PICTURES=1, which writes them in place of the references.
#include <gtest/gtest.h>

#include <QDir>
#include <QImage>
#include <boost/json/parse.hpp>
#include <fstream>
#include <iterator>

#include "tests/qtquick/ScreenWorld.h"

namespace quillon::test {
namespace {

// A picture in which every pixel that differs visibly is black. Rendering noise is neither strong nor large.
struct Difference {
  Difference(const QImage& actual, const QImage& reference) : picture(actual.size(), QImage::Format_Grayscale8) {
    picture.fill(Qt::white);
    if (actual.size() != reference.size()) {
      pixels = actual.width() * actual.height();
      return;
    }
    constexpr int noise = 8;
    for (int y = 0; y < actual.height(); ++y) {
      for (int x = 0; x < actual.width(); ++x) {
        const QRgb left = actual.pixel(x, y);
        const QRgb right = reference.pixel(x, y);
        const int strongest = std::max({std::abs(qRed(left) - qRed(right)), std::abs(qGreen(left) - qGreen(right)),
                                        std::abs(qBlue(left) - qBlue(right))});
        if (strongest <= noise) continue;
        picture.setPixel(x, y, qRgb(0, 0, 0));
        ++pixels;
      }
    }
  }
  // More than one pixel in two thousand.
  bool isVisible() const { return pixels * 2000 > picture.width() * picture.height(); }

  QImage picture;
  int pixels = 0;
};

struct Look {
  const char* name;
  const char* language;
  const char* shape;
  const char* position;
  int palette;
  bool isDark;
  QSize size;
  bool isPreferences = false;
  double textScale = 1;
};

// Every value meets most of the others.
const Look looks[] = {
    {"en-rounded", "en", "rounded", "bottom", 1, false, {390, 844}},
    {"de-square", "de", "square", "center", 2, true, {320, 568}},
    {"fr-pill", "fr", "pill", "bottom", 3, true, {844, 390}},
    {"ar-outlined", "ar", "outlined", "center", 4, false, {390, 844}},
    {"de-edgeless", "de", "edgeless", "bottom", 5, false, {844, 390}},
    {"ar-rounded", "ar", "rounded", "bottom", 5, true, {320, 568}},
    {"en-square-large", "en", "square", "center", 4, false, {320, 568}, false, 2},
    {"de-pill-preferences", "de", "pill", "center", 1, false, {320, 568}, true},
    {"ar-square-preferences", "ar", "square", "bottom", 3, false, {390, 844}, true},
    {"fr-outlined-preferences", "fr", "outlined", "bottom", 2, false, {320, 568}, true},
    {"en-edgeless-preferences", "en", "edgeless", "center", 1, true, {844, 390}, true},
    {"de-rounded-preferences-large", "de", "rounded", "bottom", 5, true, {320, 568}, true, 2},
};

struct Gallery : ScreenWorld {
  explicit Gallery(const Look& look) {
    presenter = QtScreenPresenter::make({.isDark = look.isDark, .textScale = look.textScale, .isMotionReduced = true});
    window->resize(look.size);
    window->setColor(look.isDark ? QColor("#26292e") : QColor("#d9dde2"));
    language = look.language;
    std::ifstream file(QUILLON_SAMPLE_CONFIGURATION);
    const std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    document = boost::json::parse(text).as_object();
    auto& banner = bannerOf(document);
    banner["button_shape"] = look.shape;
    banner["banner_position"] = look.position;
    banner["palette_theme"] = look.palette;
    banner.erase("palette");  // which would win
    start();
    if (look.isPreferences) {
      world.sdk->presentPreferenceCenter();
    } else {
      presenter->presentBanner(world.sdk->core());
    }
  }
  QImage picture() {
    EXPECT_TRUE(await([&] { return top() && top()->property("shown").toDouble() == 1; })) << world.log();
    settle();
    window->grabWindow();
    settle();
    return window->grabWindow();
  }
};

TEST(Pictures, EveryScreenLooksAsInItsReference) {
  const bool isRenewal = qEnvironmentVariableIsSet("QUILLON_RENEW_PICTURES");
  const QString actuals = QDir::currentPath() + "/pictures/";
  for (const Look& look : looks) {
    const QImage actual = Gallery(look).picture();
    const QString file = QString(QUILLON_REFERENCE_FOLDER) + look.name + ".png";
    if (isRenewal) {
      EXPECT_TRUE(actual.save(file)) << file.toStdString();
      continue;
    }
    const Difference difference(actual, QImage(file));
    if (!difference.isVisible()) continue;
    QDir().mkpath(actuals);
    actual.save(actuals + look.name + ".png");
    difference.picture.save(actuals + look.name + "-difference.png");
    ADD_FAILURE() << look.name << " differs in " << difference.pixels << " pixels: see " << actuals.toStdString();
  }
}

TEST(Pictures, AMoveOfFourPixelsAndAnotherColourAreSeenAndNoiseIsNot) {
  Gallery gallery(looks[0]);
  const QImage original = gallery.picture();
  QImage noisy = original;
  for (int y = 0; y < noisy.height(); ++y) {
    for (int x = 0; x < noisy.width(); ++x) {
      noisy.setPixelColor(x, y, noisy.pixelColor(x, y).lighter(100 + (x * 7 + y * 13) % 4));
    }
  }
  EXPECT_FALSE(Difference(noisy, original).isVisible());
  EXPECT_FALSE(Difference(gallery.picture(), original).isVisible());
  QQuickItem* button = gallery.control("Accept all");
  ASSERT_TRUE(button);
  button->setX(button->x() + 4);
  EXPECT_TRUE(Difference(gallery.picture(), original).isVisible());
  button->setX(button->x() - 4);
  CustomColors colors{.buttonBackground = "#1d3a6f",  // a shade lighter than the palette's
                      .buttonText = "#ffffff",
                      .buttonBorder = "#1d3a6f",
                      .bannerBackground = "#ffffff",
                      .bannerText = "#1c2530",
                      .bannerLinks = "#0b5cad",
                      .preferenceCenterFooterBackground = "#f2f5f9",
                      .preferenceCenterFooterSelector = "#1d3a5f"};
  gallery.presenter->dismissTopMost();
  ASSERT_TRUE(gallery.isGone());
  gallery.world.sdk->registerColors(colors);
  gallery.presenter->presentBanner(gallery.world.sdk->core());
  const QImage recoloured = gallery.picture();
  EXPECT_TRUE(Difference(recoloured, original).isVisible());
}

}  // namespace
}  // namespace quillon::test
