#include <gtest/gtest.h>

#include <QGuiApplication>
#include <QKeyEvent>
#include <QPalette>
#include <algorithm>
#include <cstdlib>
#include <optional>
#include <thread>

#include "core/Persistance/UserDefaults/StoreKeys.h"
#include "platform/memory/SettableDesktopSettings.h"
#include "quillon/QtQuick.h"
#include "tests/qtquick/ScreenWorld.h"

namespace quillon::test {
namespace {

using namespace std::chrono_literals;

const QString explanation = "You cannot opt out from this Purpose.";

struct Screens : testing::Test, ScreenWorld {
  bool isOn(const std::string& purpose) const { return control(purpose)->property("isOn").toBool(); }
  // How many visible items say exactly that.
  std::ptrdiff_t saying(const QString& text) const {
    return std::ranges::count_if(items(),
                                 [&](const QQuickItem* item) { return item->property("text").toString() == text; });
  }
  static QRectF place(const QQuickItem* item) { return item->mapRectToScene(item->boundingRect()); }
};

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

TEST_F(Screens, ABannerThatIsClosedRecordsTheDefaults) {
  start();
  for (const bool byKey : {true, false}) {
    world.sdk->removeConsents();
    banner();
    byKey ? key(Qt::Key_Escape) : use("Close");
    EXPECT_TRUE(isGone());
    EXPECT_EQ(status(1), "declined");
    EXPECT_EQ(world.stored().consentGivenType(), GivenType::implicitly);
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

TEST_F(Screens, RefusingAllIsAsNearAsAcceptingAllAndSavingComesNext) {
  start();
  for (const std::string choice : {"Unselect All", "Select All"}) {
    preferenceCenter();
    EXPECT_EQ(control("Unselect All")->size(), control("Select All")->size());
    use(choice, Way::key);
    EXPECT_EQ(isOn("Statistics"), choice == "Select All");
    EXPECT_TRUE(isOn("Security")) << "essential";
    EXPECT_FALSE(isOn("Advertising")) << "the device decides on it";
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
    const bool before = isOn("Statistics");
    tap(*control("Statistics"), Way::key);
    for (int i = 0; i < 9; ++i) {
      EXPECT_NE(isOn("Statistics"), before) << i;
      QKeyEvent again(QEvent::KeyPress, held, {}, {}, true);
      QCoreApplication::sendEvent(window.get(), &again);
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
    const auto all = items();
    const auto message = std::ranges::find_if(all, [](const QQuickItem* item) {
      return item->inherits("QQuickText") && item->property("words").toString() == explanation;
    });
    ASSERT_NE(message, all.end());
    window->grabWindow();
    EXPECT_FALSE(place(*message).intersects(place(control("Save Changes"))));
    EXPECT_FALSE(place(*message).intersects(place(control("Security"))));
    EXPECT_TRUE(QRectF({}, size).contains(place(control("Security")))) << place(control("Security")).y();
    presenter->dismissTopMost();
    EXPECT_TRUE(isGone());
  }
}

TEST_F(Screens, APurposeThatAPrivacySignalOptsOutIsOffAndSaysWhy) {
  bannerOf(document)["compliance_type"] = "opt-out";
  document["privacy_signal_purposes"] = boost::json::array{1};
  world.server.serve(document);
  auto options = world.options();
  options.privacySignal = PrivacySignal{.isGiven = true};
  world.start(options);
  preferenceCenter();
  EXPECT_FALSE(isOn("Statistics"));
  const auto explains = [](const QQuickItem* item) {
    const auto* content = item->property("content").value<QObject*>();
    return content && content->property("markup").toString().contains("privacy signal");
  };
  EXPECT_TRUE(std::ranges::any_of(items(), explains));
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
  EXPECT_EQ(saying("Allowed"), 1);
  world.permissions->set(VantariKey::contactsUsageDescription, 3);
  // The user returns from the system settings.
  Q_EMIT qGuiApp->applicationStateChanged(Qt::ApplicationActive);
  settle();
  EXPECT_EQ(saying("Allowed"), 2);
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
  banner();
  EXPECT_TRUE(world.server.seen("/spy.png").empty());
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
    EXPECT_TRUE(QRectF(0, 0, 320, 568).contains(place(item))) << text << " at " << place(item).y();
    EXPECT_GE(std::min(place(item).height(), place(item).width()), 44) << text;
  }
}

// The colour of the window beside the answers, at the distance of four pixels.
QColor beside(const ScreenWorld& app) {
  return app.window->grabWindow().pixelColor(app.control("Reject")->mapToScene({-4, -4}).toPoint());
}

TEST_F(Screens, FollowTheDesktopIntoTheDark) {
  presenter = QtScreenPresenter::make({.textScale = 1, .isMotionReduced = true});
  const QPalette light = QGuiApplication::palette();
  start();
  banner();
  EXPECT_GT(beside(*this).lightness(), 200);
  QPalette dark = light;
  dark.setColor(QPalette::Window, Qt::black);
  dark.setColor(QPalette::WindowText, Qt::white);
  QGuiApplication::setPalette(dark);
  EXPECT_LT(beside(*this).lightness(), 60);
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
  const auto height = [&] { return control("Reject") ? control("Reject")->height() : 0; };
  const double usual = height();
  EXPECT_GT(beside(*this).lightness(), 200);
  desktop->set({.prefersDark = true, .isContrastHigh = true, .isMotionReduced = true, .textScale = 2});
  EXPECT_TRUE(await([&] { return height() > 1.3 * usual; })) << "larger text, larger control";
  EXPECT_LT(beside(*this).lightness(), 60);
  desktop->set({});
  EXPECT_TRUE(await([&] { return height() == usual; }));
  EXPECT_GT(beside(*this).lightness(), 200);
  const auto fill = [&] {
    const QQuickItem* item = control("Accept");
    return window->grabWindow().pixelColor(item->mapToScene({item->width() / 2, 4}).toPoint());
  };
  // A renderer may round a blended pixel either way.
  const auto isAccent = [&] {
    const QColor shown = fill(), accent("#e62d42");
    return std::abs(shown.red() - accent.red()) <= 2 && std::abs(shown.green() - accent.green()) <= 2 &&
           std::abs(shown.blue() - accent.blue()) <= 2;
  };
  EXPECT_FALSE(isAccent());
  desktop->set({.accent = colorFromText("#e62d42")});
  EXPECT_TRUE(await(isAccent)) << fill().name().toStdString();
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
      {"fetched", [&] { window.reset(), world.sdk->presentPreferenceCenter(); }},
      {"asked for", [&] { world.sdk->presentPreferenceCenter(), window.reset(); }},
      {"being made", [&] { presenter->presentBanner(world.sdk->screens()), window.reset(); }},
      {"shown", [&] { banner(), preferenceCenter(), window.reset(); }},
      {"dismissed", [&] { banner(), presenter->dismissTopMost(), window.reset(); }},
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
    ASSERT_TRUE(await([&] { return top() && (!waits || isShown()); }));
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
