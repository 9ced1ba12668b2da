// Screens at the scale that the environment sets, such as 1.25. The tests are also registered with such scales.
#include <gtest/gtest.h>

#include <QColor>
#include <QQuickItem>
#include <cmath>

#include "tests/qtquick/ScreenWorld.h"

namespace quillon::test {
namespace {

// Where it does not end on the screen's pixels; empty when it does.
std::string between(double ratio, std::initializer_list<double> places) {
  std::string found;
  for (const double place : places) {
    const double pixels = place * ratio;
    if (std::abs(pixels - std::round(pixels)) > 0.05) found += std::to_string(pixels) + ' ';
  }
  return found;
}

// Returns the number of lines.
int expectSharpLines(const ScreenWorld& app) {
  const double ratio = app.window->devicePixelRatio();
  int lines = 0;
  for (QQuickItem* item : app.items()) {
    if (!item->inherits("QQuickRectangle")) continue;
    const auto* border = item->property("border").value<QObject*>();
    const double width = border->property("width").toDouble();
    const bool isLine = item->height() < 2 && item->height() > 0;
    // Without a border of its own it has a black one, which is not drawn.
    const auto color = border->property("color").value<QColor>();
    const bool isFramed = width > 0 && color.alpha() == 255 && color != QColor(Qt::black);
    if (!isLine && !isFramed) continue;
    ++lines;
    const QRectF place = item->mapRectToScene(item->boundingRect());
    EXPECT_EQ(between(ratio, {place.left(), place.top(), place.right(), place.bottom(), isFramed ? width : 0}), "")
        << item->parentItem()->metaObject()->className() << " / " << item->metaObject()->className() << " in "
        << item->parentItem()->property("text").toString().toStdString();
  }
  return lines;
}

struct Surroundings {
  QSize window;
  const char* language;
  const char* position;
  const char* buttons;
};

TEST(Scales, LinesEndOnThePixelsOfTheScreen) {
  for (const auto& [size, language, position, buttons] : {Surroundings{{320, 640}, "en", "bottom", "rounded"},
                                                          {{400, 801}, "ar", "center", "outlined"},
                                                          {{1199, 803}, "en", "bottom", "square"},
                                                          {{845, 391}, "en", "center", "outlined"}}) {
    SCOPED_TRACE(testing::Message() << size.width() << 'x' << size.height() << ' ' << language);
    ScreenWorld app;
    app.language = language;
    auto& banner = bannerOf(app.document);
    banner["banner_position"] = position;
    banner["button_shape"] = buttons;
    app.window->resize(size);
    app.start();
    app.banner();
    app.key(Qt::Key_Tab);
    app.settle();
    EXPECT_GT(expectSharpLines(app), 0);
    app.preferenceCenter();
    for (const int tab : {0, 1}) {
      app.top()->property("model").value<QObject*>()->setProperty("tab", tab);
      for (int i = 0; i < 6; ++i) {
        app.key(Qt::Key_Tab);
        app.settle();
        EXPECT_GT(expectSharpLines(app), 2);
      }
    }
    if (language == std::string_view("en")) {
      app.prompt();
      EXPECT_GT(expectSharpLines(app), 0);
    }
  }
}

}  // namespace
}  // namespace quillon::test
