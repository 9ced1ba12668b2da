// Listeners: events and removal.
#include <gtest/gtest.h>

#include <thread>

#include "core/Persistance/UserDefaults/StoreKeys.h"
#include "platform/ScreenServices.h"
#include "tests/support/Contains.h"
#include "tests/support/World.h"

namespace quillon::test {
namespace {

using namespace std::chrono_literals;
using enum ConsentStatus;

std::string words(const Decision& change) {
  const auto text = [](ConsentStatus status) { return std::string(rawValue(status)); };
  return (change.purposeId ? std::to_string(*change.purposeId) : change.permission.value().rawValue()) + " " +
         (change.from ? text(*change.from) : "") + ">" + text(change.to);
}

TEST(Listeners, AreToldOfEveryChangeOfAConsentInOrderOnTheMainQueue) {
  World world;
  world.start();
  std::vector<std::string> first, second;
  std::thread::id main, called;
  world.onMain([&] { main = std::this_thread::get_id(); });
  const auto one = world.sdk->listenToConsents([&](const Decision& change) {
    called = std::this_thread::get_id();
    first.push_back(words(change));
    throw std::runtime_error("a listener's own affair");
  });
  auto two = world.sdk->listenToConsents([&](const Decision& change) { second.push_back(words(change)); });
  world.sdk->set({.purposeId = 1}, granted);
  world.sdk->set({.purposeId = 1}, granted);
  world.sdk->acceptOrReject(false).wait();
  world.permissions->set(VantariKey::cameraUsageDescription, 2);
  world.settle();
  EXPECT_EQ(first, (std::vector<std::string>{"1 >granted", "1 granted>declined", "2 >granted", "3 >declined",
                                             "NSCameraUsageDescription granted>declined"}));
  EXPECT_EQ(second, first);
  EXPECT_EQ(called, main);
  two.end();
  world.sdk->set({.purposeId = 1}, granted);
  world.settle();
  EXPECT_EQ(first.size(), second.size() + 1);
}

TEST(Listeners, AreNotCalledAnyMoreOnceTheHandleIsGone) {
  World world;
  world.start();
  auto captured = std::make_shared<int>();
  int calls = 0;
  Listening ownHandle;
  ownHandle = world.sdk->listenToConsents([&, captured](const Decision&) {
    ++calls;
    ownHandle.end();
  });
  std::promise<void> entered, released;
  world.platform.executors->main()->post([&] {
    entered.set_value();
    released.get_future().wait();
  });
  entered.get_future().wait();
  auto onTheWay = world.sdk->listenToConsents([&](const Decision&) { calls += 100; });
  world.sdk->set({.purposeId = 1}, granted);
  world.sdk->set({.purposeId = 1}, declined);
  onTheWay = Listening();
  released.set_value();
  world.settle();
  EXPECT_EQ(calls, 1) << "neither what was on its way, nor after a listener ended itself";
  EXPECT_EQ(captured.use_count(), 1) << "and what it held is gone";
  auto last = world.sdk->listenToUploads([](const UploadEvent&) {});
  world.sdk.reset();
  last.end();
}

TEST(Listeners, DroppedOnAnotherThreadWaitForTheCallThatIsUnderWay) {
  World world;
  world.start();
  std::promise<void> entered;
  std::atomic<bool> isOver = false;
  std::atomic<bool> mayEnd = false;
  auto listening = world.sdk->listenToConsents([&](const Decision&) {
    entered.set_value();
    while (!mayEnd) std::this_thread::yield();
    isOver = true;
  });
  world.sdk->set({.purposeId = 1}, granted);
  entered.get_future().wait();
  std::jthread releases([&] { mayEnd = true; });
  listening.end();
  EXPECT_TRUE(isOver);
}

TEST(Listeners, HearOfUploadsAndScreens) {
  World world;
  world.server.onUpload(json(R"({"status":1,"message":"busy"})"));
  world.start();
  std::vector<UploadEvent> uploads;
  std::vector<ScreenEvent> screens;
  const auto one = world.sdk->listenToUploads([&](const UploadEvent& event) { uploads.push_back(event); });
  const auto two = world.sdk->listenToScreens([&](const ScreenEvent& event) { screens.push_back(event); });
  world.sdk->acceptOrReject(true).wait();
  world.server.onUpload(json("{}", 500));
  world.sdk->uploadPendingConsents().wait();
  world.server.onUpload(json(saved));
  world.sdk->uploadPendingConsents().wait();
  auto shown = world.sdk->screens()->shown(ScreenKind::banner);
  world.advance(5s);
  shown.reset();
  world.settle();
  EXPECT_EQ(uploads, (std::vector<UploadEvent>{{false, 1, "busy", startSeconds},
                                               {false, std::nullopt, "Failed with Status (500)", startSeconds},
                                               {true, 0, "saved", startSeconds}}));
  EXPECT_EQ(screens, (std::vector<ScreenEvent>{{ScreenKind::banner, true, startSeconds},
                                               {ScreenKind::banner, false, startSeconds + 5}}));
}

// Any operation called first is answered from the store, on any thread.
TEST(BeforeSetUp, EverythingIsAnsweredFromTheStore) {
  World world;
  world.start();
  world.sdk->acceptOrReject(true).wait();
  world.restart();
  auto& sdk = *world.sdk;
  const std::vector<std::pair<std::string, std::function<bool()>>> answers{
      {"get", [&] { return sdk.get(1) == granted && sdk.get(99) == declined; }},
      {"get a permission", [&] { return sdk.get(VantariKey::contactsUsageDescription) == declined; }},
      {"purposes", [&] { return sdk.getPurposeConsents().get().at(0).consentStatus == granted; }},
      {"permissions", [&] { return sdk.getPermissionConsents().get().size() == 2; }},
      {"check one", [&] { return sdk.checkConsentBy(VantariKey::cameraUsageDescription).get() == granted; }},
      {"banner", [&] { return sdk.getBannerConfig().get().has_value(); }},
      {"banner due", [&] { return !sdk.isBannerDue(); }},
      {"settings prompt", [&] { return !sdk.getSettingsPrompt().get(); }},
      {"consent mode", [&] { return !sdk.getGCMConfig().get() && sdk.getGCMConsents().get().empty(); }},
      {"history", [&] { return sdk.getHistory().get().entries.size() == 5; }},
      {"set", [&] { return sdk.set({.purposeId = 3}, declined); }},
      {"answer", [&] { return sdk.acceptOrReject(false).get() && sdk.get(1) == declined; }},
      {"check", [&] { return sdk.checkConsents().wait_for(10s) == std::future_status::ready; }},
      {"upload", [&] { return !sdk.uploadPendingConsents().get(); }},
      {"status", [&] { return sdk.getStatus() == SDKStatus::unavailable && sdk.sdkVersion() == "1.2.3"; }},
  };
  for (const auto& [name, isRight] : answers) {
    bool onAThread = false;
    std::jthread([&] { onAThread = isRight(); }).join();
    EXPECT_TRUE(onAThread) << name;
  }
  EXPECT_FALSE(contains(world.log(), "[ERROR]"));
}

}  // namespace
}  // namespace quillon::test
