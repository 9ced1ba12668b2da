#include <gtest/gtest.h>

#include <QGuiApplication>
#include <QKeyEvent>
#include <QPalette>
#include <algorithm>
#include <optional>
#include <thread>

#include "core/Persistance/UserDefaults/StoreKeys.h"
#include "platform/memory/SettableDesktopSettings.h"
#include "quillon/QtQuick.h"
#include "tests/qtquick/ScreenWorld.h"

namespace quillon::test {
namespace {

using namespace std::chrono_literals;

struct Screens : testing::Test, ScreenWorld {};

TEST_F(Screens, EveryWayToAnswerTheBannerStoresTheAnswerAndReturnsTheFocus) {
  start();
  for (const Way way : {Way::mouse, Way::touch, Way::key, Way::assistive}) {
    for (const bool accept : {false, true}) {
      SCOPED_TRACE(testing::Message() << "way " << static_cast<int>(way) << (accept ? " accept" : " reject"));
      banner();
      EXPECT_FALSE(hostControl->hasActiveFocus());
      use(accept ? "Accept" : "Reject", way);
      EXPECT_TRUE(isGone());
      EXPECT_EQ(status(1), accept ? "granted" : "declined");
      EXPECT_EQ(status(2), "granted") << "essential";
      EXPECT_EQ(world.stored().consentGivenType(), GivenType::explicitly);
      EXPECT_TRUE(hostControl->hasActiveFocus());
    }
  }
}

TEST(ScreensClosed, TheBannerRecordsTheDefaults) {
  for (const bool byKey : {true, false}) {
    ScreenWorld app;
    app.start();
    app.banner();
    if (byKey) {
      app.key(Qt::Key_Escape);
    } else {
      app.use("Close");
    }
    EXPECT_TRUE(app.isGone());
    EXPECT_EQ(app.status(1), "declined");
    EXPECT_EQ(app.world.stored().consentGivenType(), GivenType::implicitly);
  }
}

TEST_F(Screens, ABannerThatMustBeAnsweredDoesNotCloseBesideTheAnswers) {
  bannerOf(document)["hide_close_button"] = true;
  start();
  banner();
  key(Qt::Key_Escape);
  key(Qt::Key_Return);
  settle();
  EXPECT_FALSE(control("Close"));
  EXPECT_TRUE(top());
  EXPECT_EQ(status(1), "none");
}

TEST_F(Screens, SavedChoicesCloseThePreferenceCentreAndTheBannerBelow) {
  for (const Way way : {Way::mouse, Way::touch, Way::key, Way::assistive}) {
    SCOPED_TRACE(static_cast<int>(way));
    if (!world.sdk) start();
    const std::string before = status(1);
    banner();
    use("Choose");
    screenWith("Statistics");
    use("Statistics", way);
    EXPECT_EQ(status(1), before) << "nothing is stored before it is saved";
    use("Save Changes", way);
    EXPECT_TRUE(isGone());
    EXPECT_EQ(status(1), before == "granted" ? "declined" : "granted");
    EXPECT_TRUE(hostControl->hasActiveFocus());
  }
}

TEST_F(Screens, ClosingThePreferenceCentreDiscardsTheChoicesAndShowsTheBannerAgain) {
  start();
  banner();
  use("Choose");
  screenWith("Statistics");
  use("Statistics");
  key(Qt::Key_Escape);
  screenWith("Accept");
  EXPECT_EQ(status(1), "none");
  EXPECT_TRUE(top()->hasActiveFocus() || control("Choose")->hasActiveFocus());
}

TEST_F(Screens, SelectAllLeavesEssentialAndTrackedPurposesAlone) {
  start();
  preferenceCenter();
  use("Select All");
  EXPECT_TRUE(control("Statistics")->property("isOn").toBool());
  EXPECT_TRUE(control("Security")->property("isOn").toBool());
  EXPECT_FALSE(control("Advertising")->property("isOn").toBool());
  use("Unselect All");
  EXPECT_FALSE(control("Statistics")->property("isOn").toBool());
  EXPECT_TRUE(control("Security")->property("isOn").toBool());
}

TEST_F(Screens, RefusingAllIsAsNearAsAcceptingAllAndSavingComesNext) {
  start();
  for (const std::string choice : {"Unselect All", "Select All"}) {
    preferenceCenter();
    EXPECT_EQ(control("Unselect All")->size(), control("Select All")->size());
    use(choice, Way::key);
    key(Qt::Key_Tab);
    EXPECT_TRUE(control("Save Changes")->hasActiveFocus()) << choice;
    key(Qt::Key_Space);
    EXPECT_TRUE(isGone());
    EXPECT_EQ(status(1), choice == "Select All" ? "granted" : "declined");
  }
}

TEST_F(Screens, AHeldKeyActsOnce) {
  start();
  preferenceCenter();
  for (const Qt::Key held : {Qt::Key_Space, Qt::Key_Return}) {
    const bool before = control("Statistics")->property("isOn").toBool();
    tap(*control("Statistics"), Way::key);
    EXPECT_NE(control("Statistics")->property("isOn").toBool(), before);
    for (int i = 0; i < 9; ++i) {
      QKeyEvent again(QEvent::KeyPress, held, {}, {}, true);
      QCoreApplication::sendEvent(window.get(), &again);
      EXPECT_NE(control("Statistics")->property("isOn").toBool(), before) << i;
    }
  }
}

TEST_F(Screens, AMessageCoversNeitherSaveNorWhatItExplains) {
  for (const QSize size : {QSize(320, 568), QSize(780, 880), QSize(1920, 1080)}) {
    SCOPED_TRACE(size.width());
    window->resize(size);
    if (!world.sdk) start();
    preferenceCenter();
    use("Security", Way::key);
    advance(1500ms);
    QQuickItem* message = nullptr;
    for (QQuickItem* item : itemsBelow(top())) {
      if (item->isVisible() && item->inherits("QQuickText") &&
          item->property("words").toString() == "You cannot opt out from this Purpose.") {
        message = item;
      }
    }
    ASSERT_TRUE(message);
    window->grabWindow();
    const auto place = [](QQuickItem* item) { return item->mapRectToScene(item->boundingRect()); };
    EXPECT_FALSE(place(message).intersects(place(control("Save Changes"))));
    EXPECT_FALSE(place(message).intersects(place(control("Security"))));
    EXPECT_TRUE(QRectF({}, size).contains(place(control("Security")))) << place(control("Security")).y();
    presenter->dismissTopMost();
    EXPECT_TRUE(isGone());
  }
}

TEST_F(Screens, ASwitchThatCannotBeSwitchedStaysAndIsExplainedLater) {
  start();
  preferenceCenter();
  const auto hasMessage = [&](const QString& text) {
    for (const QQuickItem* item : itemsBelow(top())) {
      if (item->isVisible() && item->property("text").toString() == text) return true;
    }
    return false;
  };
  const QString message = "You cannot opt out from this Purpose.";
  for (const Way way : {Way::mouse, Way::key, Way::assistive}) {
    use("Security", way);
    EXPECT_TRUE(control("Security")->property("isOn").toBool());
  }
  advance(1499ms);
  EXPECT_FALSE(hasMessage(message));
  advance(1ms);
  EXPECT_TRUE(hasMessage(message));
}

TEST_F(Screens, APurposeThatAPrivacySignalOptsOutIsOffAndSaysWhy) {
  bannerOf(document)["compliance_type"] = "opt-out";
  document["privacy_signal_purposes"] = boost::json::array{1};
  world.server.serve(document);
  auto options = world.options();
  options.languageCode = language;
  options.privacySignal = PrivacySignal{.isGiven = true};
  world.start(options);
  preferenceCenter();
  EXPECT_FALSE(control("Statistics")->property("isOn").toBool());
  const auto explains = [](const QQuickItem* item) {
    const auto* content = item->property("content").value<QObject*>();
    return item->isVisible() && content && content->property("markup").toString().contains("privacy signal");
  };
  EXPECT_TRUE(std::ranges::any_of(itemsBelow(top()), explains));
  // The user may know better.
  use("Statistics");
  use("Save Changes");
  EXPECT_TRUE(isGone());
  EXPECT_EQ(status(1), "granted");
  preferenceCenter();
  EXPECT_TRUE(control("Statistics")->property("isOn").toBool());
  EXPECT_FALSE(std::ranges::any_of(itemsBelow(top()), explains));
}

TEST_F(Screens, ThePromptIsOfferedAgainUnlessItWasClosed) {
  start();
  prompt();
  use("Later");
  EXPECT_TRUE(isGone());
  prompt();
  use("Close", Way::key);
  EXPECT_TRUE(isGone());
  EXPECT_TRUE(world.stored().boolean(key::hasShownSettingsPrompt));
  // From the list of permissions it is offered all the same.
  preferenceCenter();
  use("Permissions");
  use("Update");
  screenWith("Later");
}

TEST_F(Screens, ThePermissionsFollowTheDevice) {
  start();
  preferenceCenter();
  use("Permissions");
  const auto allowed = [&] {
    int count = 0;
    for (const QQuickItem* item : itemsBelow(top())) {
      count += item->isVisible() && item->property("text").toString() == "Allowed" ? 1 : 0;
    }
    return count;
  };
  EXPECT_EQ(allowed(), 1);
  world.permissions->set(VantariKey::contactsUsageDescription, 3);
  // The user returns from the system settings.
  Q_EMIT qGuiApp->applicationStateChanged(Qt::ApplicationActive);
  settle();
  EXPECT_EQ(allowed(), 2);
}

TEST_F(Screens, TheKeyboardStaysInTheTopMostScreen) {
  start();
  banner();
  use("Choose");
  screenWith("Statistics");
  for (const Qt::Key tab : {Qt::Key_Tab, Qt::Key_Backtab}) {
    for (int i = 0; i < 30; ++i) {
      key(tab);
      const QQuickItem* focused = window->activeFocusItem();
      ASSERT_TRUE(focused && top()->isAncestorOf(focused)) << i;
    }
  }
}

TEST_F(Screens, TheTextsMakeNoRequestAndTheirLinksOpenByKey) {
  bannerOf(document)["banner_text"] = {
      {"en", "<img src=\"" + world.server.url() +
                 "spy.png\">See <a href=\"https://a.example/?q=<b>\">our <b>notice</b></a>."}};
  start();
  const auto before = world.server.seen("/spy.png").size();
  banner();
  EXPECT_EQ(world.server.seen("/spy.png").size(), before);
  key(Qt::Key_Tab);
  key(Qt::Key_Tab);
  key(Qt::Key_Return);
  settle();
  EXPECT_NE(world.log().find("not opened: https://a.example/?q=<b>"), std::string::npos) << world.log();
}

TEST_F(Screens, ArabicIsMirrored) {
  language = "ar";
  start();
  banner();
  EXPECT_GT(control("Reject")->mapToScene({}).x(), control("Accept")->mapToScene({}).x());
  EXPECT_EQ(control("Reject")->size(), control("Accept")->size());
}

TEST_F(Screens, OnASmallScreenWithLargeTextEveryControlCanBeReached) {
  presenter = QtScreenPresenter::make({.isDark = true, .textScale = 2, .isMotionReduced = true});
  window->resize(320, 568);
  bannerOf(document)["accept"] = {{"en", "Alle Verarbeitungszwecke akzeptieren"}};
  bannerOf(document)["privacy_notice_link"] = "https://a.example/";
  start();
  banner();
  for (const char* text : {"Reject", "Alle Verarbeitungszwecke akzeptieren", "Choose", "Privacy Notice", "Close"}) {
    QQuickItem* item = control(text);
    ASSERT_TRUE(item) << text;
    QMetaObject::invokeMethod(top(), "reveal", Q_ARG(QVariant, QVariant::fromValue(item)));
    const QRectF place = item->mapRectToScene(item->boundingRect());
    EXPECT_TRUE(QRectF(0, 0, 320, 568).contains(place)) << text << " at " << place.y();
    EXPECT_GE(place.height(), 44) << text;
    EXPECT_GE(place.width(), 44) << text;
  }
}

TEST_F(Screens, FollowTheDesktopIntoTheDark) {
  presenter = QtScreenPresenter::make({.textScale = 1, .isMotionReduced = true});
  const QPalette light = QGuiApplication::palette();
  start();
  banner();
  const QPoint inside = control("Reject")->mapToScene({-4, -4}).toPoint();
  EXPECT_GT(window->grabWindow().pixelColor(inside).lightness(), 200);
  QPalette dark = light;
  dark.setColor(QPalette::Window, Qt::black);
  dark.setColor(QPalette::WindowText, Qt::white);
  QGuiApplication::setPalette(dark);
  EXPECT_LT(window->grabWindow().pixelColor(inside).lightness(), 60);
  QGuiApplication::setPalette(light);
}

TEST_F(Screens, FollowWhatTheUserHasSetForTheWholeDesktop) {
  const auto desktop = std::make_shared<SettableDesktopSettings>();
  world.amend = [&, amend = world.amend](Platform& platform) {
    amend(platform);
    platform.desktop = desktop;
  };
  presenter = QtScreenPresenter::make({});
  start();
  banner();
  const auto answer = [&] { return control("Reject"); };
  const QPoint inside = answer()->mapToScene({-4, -4}).toPoint();
  const double height = answer()->height();
  EXPECT_GT(window->grabWindow().pixelColor(inside).lightness(), 200);
  desktop->set({.prefersDark = true, .isContrastHigh = true, .isMotionReduced = true, .textScale = 2});
  EXPECT_TRUE(await([&] { return answer() && answer()->height() > 1.3 * height; })) << "larger text, larger control";
  EXPECT_LT(window->grabWindow().pixelColor(inside).lightness(), 60);
  desktop->set({});
  EXPECT_TRUE(await([&] { return answer() && answer()->height() == height; }));
  EXPECT_GT(window->grabWindow().pixelColor(inside).lightness(), 200);
  const auto fill = [&] {
    const QQuickItem* item = control("Accept");
    return window->grabWindow().pixelColor(item->mapToScene({item->width() / 2, 4}).toPoint());
  };
  EXPECT_NE(fill(), QColor("#e62d42"));
  desktop->set({.accent = colorFromText("#e62d42")});
  EXPECT_TRUE(await([&] { return fill() == QColor("#e62d42"); }));
}

TEST(ScreensOfTheSharedInstance, AreConfiguredBeforeItsFirstUseAndShareTheQtLoop) {
  ScreenWorld app;
  ASSERT_TRUE(configureQtQuick({.applicationId = "shared", .dataDirectory = app.world.folder.path() / "shared"}));
  std::optional<std::thread::id> thread;
  ConsentSDK::shared().getBannerConfig(std::nullopt, [&](const auto&) { thread = std::this_thread::get_id(); });
  EXPECT_FALSE(thread);
  EXPECT_TRUE(app.await([&] { return thread.has_value(); }));
  EXPECT_EQ(thread, std::this_thread::get_id());
  EXPECT_FALSE(configureQtQuick({})) << "too late";
  ConsentSDK::shared().presentPreferenceCenter();
  EXPECT_TRUE(app.await([&] { return itemsBelow(app.window->contentItem()).size() > 10; }))
      << "its screens lie over the application's window";
}

TEST_F(Screens, AWindowThatGoesAwayAtAnyMomentTakesItsScreensAlong) {
  start();
  const std::pair<const char*, std::function<void()>> moments[] = {
      {"fetched",
       [&] {
         window.reset();
         world.sdk->presentPreferenceCenter();
       }},
      {"asked for",
       [&] {
         world.sdk->presentPreferenceCenter();
         window.reset();
       }},
      {"being made",
       [&] {
         presenter->presentBanner(world.sdk->screens());
         window.reset();
       }},
      {"shown",
       [&] {
         banner();
         preferenceCenter();
         window.reset();
       }},
      {"dismissed",
       [&] {
         banner();
         presenter->dismissTopMost();
         window.reset();
       }},
  };
  for (const auto& [moment, goAway] : moments) {
    SCOPED_TRACE(moment);
    window = std::make_unique<QQuickWindow>();
    window->show();
    goAway();
    settle();
    // Without a window of its own the application is given one, which leaves with its screen.
    if (std::string_view(moment) == "fetched") {
      ASSERT_TRUE(await([&] { return top() && top()->window(); }));
    }
    const QPointer<QQuickWindow> given = top() ? top()->window() : nullptr;
    presenter->dismissTopMost();  // on a busy machine it may still be being made
    EXPECT_TRUE(isGone());
    EXPECT_TRUE(await([&] { return !given; }));
    EXPECT_NE(status(1), "granted");
  }
}

TEST_F(Screens, NothingIsLeftAfterAHundredRounds) {
  start();
  banner();
  presenter->dismissTopMost();
  EXPECT_TRUE(isGone());
  const auto items = window->contentItem()->childItems().size();
  const auto holders = world.sdk->screens().use_count();
  for (int round = 0; round < 100; ++round) {
    presenter->presentBanner(world.sdk->screens());
    // Some are dismissed before they are complete.
    const bool waits = round % 3 != 0;
    ASSERT_TRUE(await([&] { return top() && (!waits || top()->property("shown").toDouble() == 1); }));
    presenter->dismissTopMost();
    ASSERT_TRUE(isGone());
  }
  EXPECT_EQ(window->contentItem()->childItems().size(), items);
  // The threads let go of what they have done when they come to it.
  for (int round = 0; round < 1000 && world.sdk->screens().use_count() != holders; ++round) settle();
  EXPECT_EQ(world.sdk->screens().use_count(), holders);
}

}  // namespace
}  // namespace quillon::test
