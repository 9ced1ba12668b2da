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
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <vector>

#include "tests/qtquick/ScreenWorld.h"
#include "ui/qtquick/ConsentBannerAdapter.h"

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

struct Gallery;

struct Look {
  const char* screen;
  const char* language;
  const char* shape;
  const char* position;
  int palette;
  const char* surroundings;
  const char* size;
  int textScale;
  const char* occasion = "";
  void (*begin)(Gallery&) = nullptr;  // that occasion, on the complete screen

  std::vector<std::string> values() const {
    return {screen, language, shape, position, std::to_string(palette), surroundings, size, std::to_string(textScale)};
  }
  // Of its picture, without the ending.
  std::string name() const {
    std::string name = occasion;
    for (const auto& value : values()) name += (name.empty() ? "" : "-") + value;
    return name;
  }
  QSize windowSize() const {
    const auto sides = QString(size).split('x');
    return {sides[0].toInt(), sides[1].toInt()};
  }
};

// Every value meets every other.
const Look looks[] = {
    {"banner", "fr", "rounded", "center", 2, "light", "390x844", 1},
    {"banner", "de", "rounded", "bottom", 3, "light", "320x568", 2},
    {"banner", "en", "rounded", "center", 5, "dark", "390x844", 2},
    {"banner", "en", "square", "center", 1, "dark", "844x390", 2},
    {"banner", "ar", "square", "bottom", 2, "light", "820x1180", 2},
    {"banner", "ar", "pill", "bottom", 1, "light", "320x568", 1},
    {"banner", "de", "pill", "bottom", 4, "light", "844x390", 2},
    {"banner", "de", "outlined", "bottom", 2, "dark", "390x844", 1},
    {"banner", "en", "outlined", "center", 4, "dark", "320x568", 2},
    {"banner", "ar", "outlined", "bottom", 5, "light", "844x390", 1},
    {"banner", "ar", "edgeless", "center", 1, "light", "390x844", 2},
    {"banner", "de", "edgeless", "center", 4, "light", "820x1180", 1},
    {"preferences", "de", "rounded", "center", 1, "dark", "844x390", 1},
    {"preferences", "ar", "rounded", "center", 4, "dark", "820x1180", 1},
    {"preferences", "ar", "square", "center", 3, "dark", "820x1180", 1},
    {"preferences", "fr", "square", "bottom", 4, "dark", "390x844", 1},
    {"preferences", "de", "square", "center", 5, "dark", "320x568", 1},
    {"preferences", "fr", "pill", "center", 2, "dark", "320x568", 2},
    {"preferences", "en", "pill", "bottom", 3, "light", "390x844", 1},
    {"preferences", "en", "pill", "center", 5, "dark", "820x1180", 2},
    {"preferences", "fr", "outlined", "bottom", 1, "dark", "820x1180", 1},
    {"preferences", "de", "outlined", "center", 3, "light", "820x1180", 2},
    {"preferences", "en", "edgeless", "bottom", 2, "dark", "844x390", 1},
    {"preferences", "fr", "edgeless", "bottom", 3, "dark", "844x390", 1},
    {"preferences", "fr", "edgeless", "bottom", 5, "dark", "320x568", 2},
};

struct Gallery : ScreenWorld {
  explicit Gallery(const Look& look) {
    const bool isDark = std::string_view(look.surroundings) == "dark";
    presenter = QtScreenPresenter::make(
        {.isDark = isDark, .textScale = static_cast<double>(look.textScale), .isMotionReduced = true});
    window->resize(look.windowSize());
    window->setColor(isDark ? QColor("#26292e") : QColor("#d9dde2"));
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
    if (std::string_view(look.screen) == "preferences") {
      world.sdk->presentPreferenceCenter();
    } else if (std::string_view(look.screen) == "prompt") {
      world.sdk->presentSettingPrompt(VantariKey::cameraUsageDescription);
    } else {
      presenter->presentBanner(world.sdk->screens());
    }
  }
  QImage picture() {
    EXPECT_TRUE(await([&] { return top() && top()->property("shown").toDouble() == 1; })) << world.log();
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
const Look occasions[] = {
    {"preferences", "de", "rounded", "bottom", 1, "dark", "320x568", 2, "loading", keepLoading},
    {"banner", "ar", "rounded", "bottom", 1, "light", "320x568", 2, "failure", fail},
    {"banner", "de", "pill", "bottom", 1, "light", "390x844", 1, "theme", takeThemeOfHost},
    {"preferences", "ar", "rounded", "bottom", 1, "light", "390x844", 1, "theme", takeThemeOfHost},
    {"prompt", "de", "outlined", "center", 2, "dark", "320x568", 2},
};

std::vector<Look> allLooks() {
  std::vector<Look> all(std::begin(looks), std::end(looks));
  all.insert(all.end(), std::begin(occasions), std::end(occasions));
  return all;
}

TEST(Pictures, EveryScreenLooksAsInItsReference) {
  const bool isRenewal = qEnvironmentVariableIsSet("QUILLON_RENEW_PICTURES");
  const QString actuals = QDir::currentPath() + "/pictures/";
  // The Arabic font of Debian 13 is another one.
  const bool isFontAnother = QLibraryInfo::version() >= QVersionNumber(6, 5);
  for (const Look& look : allLooks()) {
    if (isFontAnother && look.language == std::string_view("ar")) continue;
    SCOPED_TRACE(look.name());
    Gallery gallery(look);
    if (look.begin) {
      gallery.picture();
      look.begin(gallery);
    }
    const QImage actual = gallery.picture();
    const QString file = QString(QUILLON_SCREENS_FOLDER) + QString::fromStdString(look.name()) + ".png";
    if (isRenewal) {
      constexpr int smallest = 0;  // of the files that the same picture may become
      EXPECT_TRUE(actual.convertToFormat(QImage::Format_RGB888).save(file, "PNG", smallest)) << file.toStdString();
      continue;
    }
    const Difference difference(actual, QImage(file));
    if (!difference.isVisible()) continue;
    QDir().mkpath(actuals);
    const QString name = QString::fromStdString(look.name());
    actual.save(actuals + name + ".png");
    difference.picture.save(actuals + name + "-difference.png");
    ADD_FAILURE() << look.name() << " differs in " << difference.pixels << " pixels: see " << actuals.toStdString();
  }
}

TEST(Pictures, EveryPairOfValuesIsInOneAndThePageShowsThemAll) {
  std::set<std::vector<std::string>> shown;
  std::vector<std::set<std::string>> values(looks[0].values().size());
  std::ifstream file(QUILLON_SCREENS_FOLDER "../screens.md");
  const std::string page((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  for (const Look& look : allLooks()) {
    EXPECT_NE(page.find("(screens/" + look.name() + ".png)"), std::string::npos) << look.name();
  }
  for (const Look& look : looks) {
    const auto own = look.values();
    for (std::size_t i = 0; i < own.size(); ++i) {
      values[i].insert(own[i]);
      for (std::size_t j = 0; j < i; ++j) shown.insert({std::to_string(i), own[i], std::to_string(j), own[j]});
    }
  }
  std::size_t pairs = 0;
  for (std::size_t i = 0; i < values.size(); ++i) {
    for (std::size_t j = 0; j < i; ++j) pairs += values[i].size() * values[j].size();
  }
  EXPECT_EQ(shown.size(), pairs);
}

TEST(Pictures, AMoveOfFourPixelsAndAnotherColourAreSeenAndNoiseIsNot) {
  Gallery gallery({"banner", "en", "rounded", "bottom", 1, "light", "390x844", 1});
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
  gallery.presenter->presentBanner(gallery.world.sdk->screens());
  const QImage recoloured = gallery.picture();
  EXPECT_TRUE(Difference(recoloured, original).isVisible());
}

}  // namespace
}  // namespace quillon::test
