// Screens that a page of the application's own places.
#include <gtest/gtest.h>

#include <QQmlComponent>
#include <QQmlEngine>
#include <algorithm>
#include <boost/json/serialize.hpp>
#include <filesystem>

#include "core/Persistance/UserDefaults/StoreKeys.h"
#include "quillon/QtQuick.h"
#include "tests/qtquick/ScreenWorld.h"

namespace quillon::test {
namespace {

struct PlacedScreens : testing::Test, ScreenWorld {
  ~PlacedScreens() override { page.reset(); }

  // A page with that element in a column; before the SDK is set up.
  void place(const std::string& element, const std::string& properties = "") {
    load("Column { width: 400; property string ended\n" + element +
         "{ width: parent.width; onDone: reason => { parent.ended += reason + ' ' }; " + properties + " } }");
  }
  void load(const std::string& item) {
    world.restart();
    engine = std::make_unique<QQmlEngine>();
    addConsentElements(*engine, *world.sdk, {.isDark = false, .textScale = 1, .isMotionReduced = true});
    QQmlComponent component(engine.get());
    component.setData(QByteArray::fromStdString("import QtQuick; import Quillon.Consent\n" + item), {});
    page.reset(qobject_cast<QQuickItem*>(component.create()));
    ASSERT_TRUE(page) << component.errorString().toStdString();
    page->setParentItem(window->contentItem());
  }
  QQuickItem* find(const std::string& text) const {
    const auto all = itemsBelow(page.get());
    const auto found = std::ranges::find_if(all, [&](const QQuickItem* item) {
      return item->isVisible() && item->property("text").toString().toStdString() == text;
    });
    return found == all.end() ? nullptr : *found;
  }
  bool shows(const std::string& text) {
    return await([&] { return find(text) != nullptr; });
  }
  void press(const std::string& text) {
    ASSERT_TRUE(shows(text)) << world.log();
    settle();
    tap(*find(text), Way::assistive);
  }
  std::string ended() const { return page->property("ended").toString().toStdString(); }
  // What a function of the page returns.
  QVariant call(const char* function, const QVariant& argument) {
    QVariant result;
    QMetaObject::invokeMethod(page.get(), function, Q_RETURN_ARG(QVariant, result), Q_ARG(QVariant, argument));
    return result;
  }

  std::unique_ptr<QQmlEngine> engine;
  std::unique_ptr<QQuickItem> page;
};

TEST_F(PlacedScreens, TheBannerWaitsForTheConfigurationAndIsDoneOnceAnswered) {
  place("ConsentBanner");
  start();
  ASSERT_TRUE(shows("Accept")) << world.log();
  const auto bottom = [&] { return find("Accept")->mapToItem(page.get(), {0, find("Accept")->height()}).y(); };
  EXPECT_TRUE(await([&] {
    window->grabWindow();  // places the items
    return page->height() >= bottom();
  })) << "the element is as high as what it shows";
  press("Choose");
  screenWith("Save Changes");
  use("Save Changes");
  EXPECT_TRUE(isGone());
  EXPECT_EQ(ended(), "saved ") << "answered by way of the preference centre";
  preferenceCenter();
  press("Accept");
  EXPECT_EQ(ended(), "saved accepted ");
  EXPECT_EQ(status(1), "granted");
  EXPECT_EQ(world.stored().consentGivenType(), GivenType::explicitly);
  EXPECT_TRUE(top()) << "a screen that lies over the page is none of its business";
}

TEST_F(PlacedScreens, ABannerThatWaitedForItsConfigurationStillRecordsTheDefaultsAtTheStart) {
  bannerOf(document)["record_consent_upon_app_start"] = true;
  place("ConsentBanner");
  start();
  ASSERT_TRUE(shows("Accept")) << world.log();
  settle();
  EXPECT_EQ(status(1), "declined");
  EXPECT_EQ(world.stored().consentGivenType(), GivenType::implicitly);
}

TEST_F(PlacedScreens, AnotherSdksAnswerIsNotTheBanners) {
  place("ConsentBanner");
  start();
  ASSERT_TRUE(shows("Accept"));
  World other;
  other.amend = world.amend;  // with the same presenter
  other.server.serve(boost::json::serialize(document));
  other.start();
  const auto saveOver = [&](World& below) {
    presenter->presentBanner(below.sdk->screens());
    screenWith("Choose");
    other.sdk->presentPreferenceCenter();
    screenWith("Save Changes");
    use("Save Changes");
  };
  saveOver(other);
  EXPECT_TRUE(isGone()) << "the other one's banner goes with its preference centre";
  EXPECT_EQ(ended(), "");
  saveOver(world);
  screenWith("Choose");
  EXPECT_EQ(ended(), "");
  presenter->dismissTopMost();
  EXPECT_TRUE(isGone());
}

TEST_F(PlacedScreens, ThePreferenceCentreSavesAndStays) {
  place("PreferenceCenter");
  start();
  ASSERT_TRUE(shows("Statistics"));
  EXPECT_FALSE(find("Close"));
  press("Select All");
  press("Save Changes");
  EXPECT_EQ(ended(), "saved ");
  EXPECT_EQ(status(1), "granted");
  EXPECT_TRUE(shows("Unselect All"));
}

TEST_F(PlacedScreens, APageAsksWhatIsAllowedAndFollowsIt) {
  load(
      "Item { id: page; property string told; property string seen\n"
      "function asked(none) { return [Consent.isAllowed(1), Consent.isPermissionAllowed('NSCameraUsageDescription'),\n"
      "  Consent.status, Consent.bannerDue, one.allowed, one.status, one.name, camera.allowed].join() }\n"
      "function decide(yes) { return one.set(yes) }\n"
      "PurposeConsent { id: one; purposeId: 1; onChanged: page.seen += allowed ? '+' : '-' }\n"
      "PermissionConsent { id: camera; permission: 'NSCameraUsageDescription' }\n"
      "ConsentGate { purposeId: 1; onAllowed: page.told += '+'; onDenied: page.told += '-' } }");
  const auto asked = [&] { return call("asked", {}).toString().toStdString(); };
  const auto answers = [&](const std::string& expected) { return await([&] { return asked() == expected; }); };
  const auto told = [&](const char* expected) { return await([&] { return page->property("told") == expected; }); };
  EXPECT_TRUE(asked().starts_with("false,")) << "before a configuration";
  start();
  EXPECT_TRUE(answers("false,true,ready,true,false,declined,Statistics,true")) << asked();
  EXPECT_TRUE(call("decide", true).toBool());
  EXPECT_TRUE(told("+"));
  EXPECT_TRUE(answers("true,true,ready,false,true,granted,Statistics,true")) << asked();
  world.sdk->set({.purposeId = 1}, ConsentStatus::declined);
  EXPECT_TRUE(told("+-"));
  EXPECT_TRUE(answers("false,true,ready,false,false,declined,Statistics,true")) << asked();
  world.sdk->removeConsents();
  EXPECT_TRUE(answers("false,true,ready,true,false,declined,Statistics,true")) << asked();
}

TEST_F(PlacedScreens, APageAsksForAReceiptAndIsToldWhyThereIsNone) {
  load(
      "Item { id: page; property string told\n"
      "function ask(purpose) { told = ''; Consent.receipt([purpose], (receipt, error) =>\n"
      "  { page.told = receipt ? JSON.parse(receipt).receipt['@type'] : error }) } }");
  start();
  const auto told = [&](int purpose) {
    call("ask", purpose);
    EXPECT_TRUE(await([&] { return !page->property("told").toString().isEmpty(); }));
    return page->property("told").toString().toStdString();
  };
  world.sdk->set({.purposeId = 1}, ConsentStatus::declined);
  EXPECT_EQ(told(1), "dpv:ConsentReceipt");
  EXPECT_EQ(told(99), "purpose 99 was not decided on");
}

TEST_F(PlacedScreens, ThePromptIsAboutThePermissionThatThePageNames) {
  place("SettingsPrompt", "permission: 'NSCameraUsageDescription'");
  start();
  EXPECT_TRUE(shows("Later"));
}

TEST_F(PlacedScreens, AFailureIsToldAndCanBeTriedAgain) {
  start();
  const auto away = world.folder.path() / "away";
  std::filesystem::rename(world.file(), away);
  std::filesystem::remove(world.backup());
  place("ConsentBanner");
  EXPECT_TRUE(shows("Failed to Load Banner Configuration"));
  EXPECT_FALSE(find("Accept"));
  std::filesystem::rename(away, world.file());
  press("Refresh");
  EXPECT_TRUE(shows("Accept"));
}

}  // namespace
}  // namespace quillon::test
