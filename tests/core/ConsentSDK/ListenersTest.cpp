// Who is told of what, and until when.
#include <gtest/gtest.h>

#include <thread>

#include "platform/ScreenServices.h"
#include "tests/support/World.h"

namespace quillon::test {
namespace {

using namespace std::chrono_literals;
using enum ConsentStatus;

struct Listeners : ::testing::Test {
  Listeners() { world.start(); }

  World world;
};

TEST_F(Listeners, AreNotCalledAnyMoreOnceTheHandleIsGone) {
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

TEST_F(Listeners, DroppedOnAnotherThreadWaitForTheCallThatIsUnderWay) {
  std::promise<void> entered;
  std::atomic<bool> isOver = false, mayEnd = false;
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

TEST_F(Listeners, HearOfUploadsAndScreensOnTheMainQueue) {
  std::vector<UploadEvent> uploads;
  std::vector<ScreenEvent> screens;
  std::thread::id main, called;
  world.onMain([&] { main = std::this_thread::get_id(); });
  const auto one = world.sdk->listenToUploads([&](const UploadEvent& event) {
    uploads.push_back(event);
    called = std::this_thread::get_id();
  });
  const auto two = world.sdk->listenToScreens([&](const ScreenEvent& event) { screens.push_back(event); });
  ASSERT_TRUE(world.sdk->set({.purposeId = 1}, granted));
  for (const auto& [answer, status] : {std::pair(R"({"status":1,"message":"busy"})", 200), {"{}", 500}, {saved, 200}}) {
    world.server.onUpload(json(answer, status));
    world.sdk->uploadPendingConsents().wait();
  }
  auto shown = world.sdk->screens()->shown(ScreenKind::banner);
  world.advance(5s);
  shown.reset();
  world.settle();
  EXPECT_EQ(uploads, (std::vector<UploadEvent>{{false, 1, "busy", startSeconds},
                                               {false, std::nullopt, "Failed with Status (500)", startSeconds},
                                               {true, 0, "saved", startSeconds}}));
  EXPECT_EQ(called, main);
  EXPECT_EQ(screens, (std::vector<ScreenEvent>{{ScreenKind::banner, true, startSeconds},
                                               {ScreenKind::banner, false, startSeconds + 5}}));
}

TEST_F(Listeners, OfTheStatusHearEachOnceAndTheLastOneAlone) {
  using enum SDKStatus;
  using Reports = std::vector<SDKStatus>;
  Reports first, second;  // on the main queue
  const auto into = [](Reports& reports) { return [&](SDKStatus status) { reports.push_back(status); }; };
  world.sdk->isReady(into(first));
  world.drainMainQueue();
  world.sdk->isReady(into(second));
  world.start();  // from the cache: still ready, nothing to report
  world.startLater();
  world.settle();
  EXPECT_EQ(first, Reports{ready}) << "a replaced observer hears nothing more";
  EXPECT_EQ(second, (Reports{ready, fetching, ready}));
  world.sdk->removeListeners();
  world.startLater();
  world.settle();
  EXPECT_EQ(second.size(), 3u);
}

}  // namespace
}  // namespace quillon::test
