// Whoever reads the screens: in any palette, size and length of text.
#include <gtest/gtest.h>

#include <QFont>
#include <algorithm>
#include <map>

#include "tests/qtquick/ScreenWorld.h"
#include "ui/Common/Labels/Languages.h"
#include "ui/qtquick/Palette.h"

namespace quillon::test {
namespace {

// Each is met by itself, in view, where the text has it.
TEST(Legibility, EveryLinkOfALongTextIsReachedWhereItStands) {
  std::string text;
  constexpr int count = 30;
  for (int i = 0; i < count; ++i) {
    text += "Some words before <a href=\"https://a.example/\">the same notice, a long name</a>, and after. ";
  }
  for (const char* language : {"en", "ar"}) {
    ScreenWorld app;
    app.language = language;
    app.window->resize(320, 568);
    bannerOf(app.document)["banner_text"] = {{"en", text}};
    app.start();
    app.banner();
    int reached = 0;
    for (int i = 0; i < 2 * count && reached < count; ++i) {
      app.key(Qt::Key_Tab);
      QQuickItem* link = app.window->activeFocusItem();
      if (link->property("text").toString() != "the same notice, a long name") continue;
      ++reached;
      app.window->grabWindow();
      const QRectF place = link->mapRectToScene(link->boundingRect());
      EXPECT_TRUE(QRectF(0, 0, 320, 568).contains(place)) << reached << " at " << place.y();
      for (const QVariant& line : link->property("lines").toList()) {
        const QPointF middle = line.toRectF().center();
        QString found;
        QMetaObject::invokeMethod(link->parentItem(), "linkAt", Q_RETURN_ARG(QString, found), Q_ARG(qreal, middle.x()),
                                  Q_ARG(qreal, middle.y()));
        EXPECT_EQ(found, QString::number(reached - 1)) << language;
      }
    }
    EXPECT_EQ(reached, count);
  }
}

TEST(Legibility, NothingIsCutOrShrunkBelowTheUsersSizeHoweverLongTheLabels) {
  boost::json::object labels;
  for (std::size_t i = 0; i < labelKeys.size(); ++i) {
    const std::string english(englishLabels().texts[i]);
    if (!english.contains('%')) labels[labelKeys[i]] = english + " Zusammengeschrieben" + english;
  }
  for (const double scale : {1.0, 2.0, 3.0}) {
    SCOPED_TRACE(scale);
    ScreenWorld app;
    app.document["i18n"] = {{"en", labels}};
    app.presenter = QtScreenPresenter::make({.isDark = false, .textScale = scale, .isMotionReduced = true});
    app.window->resize(320, 4000);
    app.start();
    app.world.sdk->presentPreferenceCenter();
    app.screenWith("Statistics");
    for (const int tab : {0, 1}) {
      app.top()->property("model").value<QObject*>()->setProperty("tab", tab);
      app.settle();
      app.window->grabWindow();
      int seen = 0;
      for (QQuickItem* item : app.items()) {
        if (!item->inherits("QQuickText") || item->property("text").toString().isEmpty()) continue;
        ++seen;
        const std::string words = item->property("text").toString().toStdString();
        const QRectF place = item->mapRectToScene(item->boundingRect());
        EXPECT_GE(place.left(), 0) << words;
        EXPECT_LE(place.right(), 320) << words;
        EXPECT_LE(item->property("contentWidth").toDouble(), item->width() + 1) << words;
        EXPECT_GE(item->property("font").value<QFont>().pixelSize(), qRound(13 * scale)) << words;
        EXPECT_FALSE(item->property("truncated").toBool()) << words;
      }
      EXPECT_GT(seen, 5);
    }
  }
}

// Of what is drawn, not of what was meant.
TEST(Legibility, AHostilePaletteBlindsNobody) {
  for (const auto& [background, other] : {std::pair("#FFFFFF", "#FFFFFF"),
                                          {"#000000", "#000000"},
                                          {"#000000", "not a colour"},
                                          {"#777777", "#7A7A7A"},
                                          {"#FFFF00", "#FFFFFF"}}) {
    for (const char* shape : {"rounded", "outlined"}) {
      SCOPED_TRACE(testing::Message() << other << " on " << background << ", " << shape);
      ScreenWorld app;
      auto& banner = bannerOf(app.document);
      banner["banner_text"] = {{"en", "Some text with a <a href=\"https://a.example/\">link</a>"}};
      banner["button_shape"] = shape;
      boost::json::object colors;
      for (const char* role : {"button_background", "banner_background", "preference_center_footer_background"}) {
        colors[role] = background;
      }
      for (const char* role : {"button_text", "button_border", "banner_text", "banner_links",
                               "preference_center_footer_selector", "toggle_primary", "toggle_secondary"}) {
        colors[role] = other;
      }
      banner["palette"] = colors;
      app.start();
      app.banner();
      // The colour of most points is what the rest stands on; the strongest of the rest is the ink.
      const auto drawn = [&app](QQuickItem& item) {
        const QImage picture = app.window->grabWindow().copy(
            item.mapRectToScene(item.boundingRect()).toAlignedRect().adjusted(6, 6, -6, -6));
        std::map<QRgb, int> counts;
        for (int y = 0; y < picture.height(); ++y) {
          for (int x = 0; x < picture.width(); ++x) ++counts[picture.pixel(x, y)];
        }
        const QColor ground =
            std::ranges::max_element(counts, {}, [](const auto& entry) { return entry.second; })->first;
        double strongest = 1;
        for (const auto& [color, count] : counts) strongest = std::max(strongest, contrast(QColor(color), ground));
        return strongest;
      };
      for (const char* text : {"Reject", "Accept", "Choose"}) {
        EXPECT_GE(drawn(*app.control(text)), legible) << text;
      }
      for (QQuickItem* item : app.items()) {
        if (!item->inherits("QQuickText") || !item->property("content").isValid()) continue;
        EXPECT_GE(drawn(*item), legible) << "the text";
      }
      const std::string log = app.world.log();
      const auto warning = log.find("The palette has colours that nobody can tell");
      ASSERT_NE(warning, std::string::npos) << log;
      EXPECT_NE(log.find("banner_text", warning), std::string::npos) << log;
      EXPECT_EQ(log.find("The palette has colours", warning + 1), std::string::npos) << "once";
      app.preferenceCenter();
      EXPECT_GE(drawn(*app.control("Statistics")), visible);
      EXPECT_GE(drawn(*app.control("Save Changes")), legible);
    }
  }
}

}  // namespace
}  // namespace quillon::test
