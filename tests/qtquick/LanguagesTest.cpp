// Our labels on the screens, in every language that we have. With QUILLON_LANGUAGE_SHEET=FILE a run also writes one
// picture of them all.
#include <gtest/gtest.h>

#include <QFont>
#include <QImage>
#include <QPainter>
#include <QUuid>
#include <boost/json/parse.hpp>
#include <filesystem>
#include <vector>

#include "tests/qtquick/ScreenWorld.h"
#include "ui/Common/Labels/Languages.h"
#include "ui/qtquick/Words.h"

namespace quillon::test {
namespace {

constexpr QSize smallest(320, 568);

// Those whose lines break between any two letters.
bool hasSpaces(std::string_view language) {
  return language != "ja" && !language.starts_with("zh");
}

// A configuration whose controls are all ours to name.
struct OwnLabels : testing::Test, ScreenWorld {
  OwnLabels() : ScreenWorld({.isDark = false, .textScale = 1, .isMotionReduced = true, .offersReceipt = true}) {
    window->resize(smallest);
    auto& banner = bannerOf(document);
    for (const char* text : {"accept", "reject", "preference_center_link"}) banner.erase(text);
    banner["banner_text"] = {{"en", "Text of the banner."}};
    banner["privacy_notice_link"] = "https://a.example/privacy";
    banner["dsr_portal_link"] = "https://a.example/rights";
    banner["embed_dsr_portal_link"] = true;
    auto& purpose = document["purposes"].as_array()[0].as_object();
    purpose["sdks"] = boost::json::parse(R"([{"sdk_name": {"en": "Meter"}, "vendor": "Meter Inc.", "license": "MIT",
      "website": "https://a.example/", "collecting_data": true, "release_date": "2026-11-26"}])");
    start();
    world.sdk->set({.purposeId = 1}, ConsentStatus::declined);
  }

  void speak(std::string_view code) {
    auto options = world.options();
    options.languageCode = std::string(code);
    world.start(options);
  }
  void appears() {
    ASSERT_TRUE(await([&] { return isShown(); })) << world.log();
    settle();
    window->grabWindow();
    settle();
  }
  void leaves() {
    presenter->dismissTopMost();
    ASSERT_TRUE(isGone());
  }

  // Nothing is cut, leaves its control or is divided within a word.
  void fits(const LabelLanguage& spoken) {
    int seen = 0;
    for (QQuickItem* item : items()) {
      const QString text = item->property("words").toString();
      if (!item->inherits("QQuickText") || text.isEmpty()) continue;
      ++seen;
      SCOPED_TRACE(std::string(spoken.code) + ": " + text.toStdString());
      const QRectF place = item->mapRectToScene(item->boundingRect());
      EXPECT_GE(place.left(), 0);
      EXPECT_LE(place.right(), smallest.width());
      EXPECT_FALSE(item->property("truncated").toBool());
      EXPECT_LE(item->property("contentWidth").toDouble(), item->width() + 1);
      const bool isIdentifier = !QUuid::fromString(text).isNull();
      if (hasSpaces(spoken.code) && !isIdentifier) {
        EXPECT_LE(item->property("lineCount").toInt(), text.split(' ').size()) << "is divided";
        EXPECT_LE(Words::longest(text, item->property("font").value<QFont>()), item->width() + 1) << "is divided";
      }
      const QQuickItem* control = item->parentItem();
      if (control->metaObject()->indexOfSignal("clicked()") < 0) continue;
      EXPECT_TRUE(control->mapRectToScene(control->boundingRect()).adjusted(-1, -1, 1, 1).contains(place));
    }
    EXPECT_GT(seen, 3) << spoken.code;
  }
};

TEST_F(OwnLabels, FitTheirControlsOnTheSmallestScreenInEveryLanguage) {
  const QString file = qEnvironmentVariable("QUILLON_LANGUAGE_SHEET");
  constexpr int columns = 7;
  constexpr int gap = 16;
  constexpr int title = 28;
  const QSize cell(2 * smallest.width() + 2 * gap, smallest.height() + title + gap);
  const int rows = (static_cast<int>(labelLanguages().size()) + columns - 1) / columns;
  QImage sheet(columns * cell.width(), rows * cell.height(), QImage::Format_RGB32);
  sheet.fill(Qt::white);
  QPainter painter(&sheet);
  QPoint corner(0, 0);
  const auto draw = [&](int column) {
    painter.drawImage(corner + QPoint(column * (smallest.width() + gap / 2), title), window->grabWindow());
  };
  for (const LabelLanguage& spoken : labelLanguages()) {
    speak(spoken.code);
    presenter->presentBanner(world.sdk->screens());
    appears();
    fits(spoken);
    const QQuickItem* accept = control(std::string(spoken.text(Label::accept)));
    const QQuickItem* reject = control(std::string(spoken.text(Label::reject)));
    ASSERT_TRUE(accept && reject) << spoken.code;
    EXPECT_EQ(accept->size(), reject->size()) << spoken.code;
    painter.drawText(corner + QPoint(4, title - 8), QString::fromStdString(std::string(spoken.code)));
    draw(0);
    leaves();

    world.sdk->presentPreferenceCenter();
    appears();
    fits(spoken);
    QMetaObject::invokeMethod(top(), "openFirstPurpose");
    settle();
    draw(1);
    fits(spoken);
    QQuickItem* const receipt = control(std::string(spoken.text(Label::receipt)));
    ASSERT_TRUE(receipt) << spoken.code;
    tap(*receipt, Way::assistive);
    ASSERT_TRUE(await([&] { return control(std::string(spoken.text(Label::saveReceipt))) != nullptr; }));
    settle();
    window->grabWindow();
    settle();
    fits(spoken);
    top()->property("model").value<QObject*>()->setProperty("tab", 1);
    appears();
    fits(spoken);
    leaves();
    corner.rx() += cell.width();
    if (corner.x() >= columns * cell.width()) corner = {0, corner.y() + cell.height()};
  }
  painter.end();
  if (!file.isEmpty()) {
    EXPECT_TRUE(sheet.convertToFormat(QImage::Format_RGB888).save(file, "PNG", 0)) << file.toStdString();
  }
}

// In the user's language where the error itself, for the log, is in English.
TEST_F(OwnLabels, AFailureAndTheTabsAreNamedInTheUsersLanguage) {
  speak("fr");
  world.sdk->presentPreferenceCenter();
  appears();
  EXPECT_TRUE(control("Finalités"));
  EXPECT_TRUE(control("Autorisations"));
  leaves();
  std::filesystem::remove_all(world.file().parent_path());
  presenter->presentBanner(world.sdk->screens());
  appears();
  EXPECT_EQ(top()->property("failure").toString(), "Les paramètres de confidentialité n’ont pas pu être chargés.");
  EXPECT_TRUE(control("Actualiser"));
}

}  // namespace
}  // namespace quillon::test
