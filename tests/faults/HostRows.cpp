// Faults of the host's callbacks.
#include <future>

#include "platform/parts/FunctionConsentSink.h"
#include "quillon/SDKLogger.h"
#include "tests/faults/Areas.h"
#include "tests/faults/Damage.h"
#include "tests/support/World.h"

namespace quillon::test {
namespace {

[[noreturn]] void fail() {
  throw std::runtime_error("host\nfault");
}

// Every host callback throws.
Seen callbacksThatThrow(Trial& trial) {
  World world;
  auto document = validConfiguration();
  document["gcm_config"] = {{"DE", {{"ad_storage", {1}}}}};
  world.server.serve(document);
  world.amend = [](Platform& platform) {
    platform.consentSink = std::make_shared<FunctionConsentSink>([](const auto&) { fail(); });
  };
  world.restart();
  world.sdk->isReady([](SDKStatus) { fail(); });
  world.start();
  auto& sdk = *world.sdk;
  sdk.getPurposeConsents([](const auto&) { fail(); });
  sdk.getPermissionConsents([](const auto&) { fail(); });
  sdk.checkConsentBy(VantariKey::cameraUsageDescription, [](ConsentStatus) { throw 7; });
  sdk.getGCMConsents([](const auto&) { fail(); });
  sdk.getBannerConfig(std::nullopt, [](const auto&) { fail(); });
  sdk.getSettingsPrompt([](const auto&) { fail(); });
  sdk.getGCMConfig([](const auto&) { fail(); });
  sdk.checkConsents([] { fail(); });
  sdk.acceptOrReject(true, [](bool) { fail(); });
  sdk.uploadPendingConsents([](bool) { fail(); });
  world.settle();
  trial.expect(sdk.uploadPendingConsents().get(), "uploads no longer work");
  trial.expect(world.log().find("A callback of the host threw: host\\nfault") != std::string::npos,
               "what was thrown is not in the log");
  return seen(world);
}

// Callbacks call the SDK on the main queue and wait for results there.
Seen callbacksThatCallBack(Trial& trial) {
  World world;
  std::promise<void> done;
  world.restart();
  world.sdk->isReady([&](SDKStatus status) {
    if (status != SDKStatus::ready) return;
    world.sdk->removeListeners();
    world.sdk->isReady([](SDKStatus) {});
    world.sdk->set({.purposeId = 1}, ConsentStatus::granted);
    trial.expect(world.sdk->getPurposeConsents().get().size() == 3, "no answer within a callback");
    trial.expect(world.sdk->acceptOrReject(true).get(), "no answer stored within a callback");
    world.sdk->setup(world.options());
    world.sdk->logger().log("within a callback", LogLevel::info, "fault", "HostRows", __LINE__);
    world.sdk->checkConsents([&] {
      world.sdk->removeListeners();
      done.set_value();
    });
  });
  world.start();
  trial.expect(done.get_future().wait_for(std::chrono::seconds(10)) == std::future_status::ready,
               "no callback any more");
  world.settle();
  return seen(world);
}

// A callback destroys its SDK.
Seen callbackThatDestroys(Trial& trial) {
  World world;
  std::promise<void> done;
  world.restart();
  world.sdk->setup(world.options());
  world.sdk->settled().wait();
  world.sdk->acceptOrReject(true, [&](bool) {
    world.sdk.reset();
    done.set_value();
  });
  trial.expect(done.get_future().wait_for(std::chrono::seconds(10)) == std::future_status::ready,
               "no callback any more");
  world.restart();
  world.start();
  return seen(world);
}

// The host's main queue drops or refuses every job: operations that do not need it do not wait for it.
Seen mainQueueThatLoses(Trial& trial) {
  World world;
  struct Nowhere : Executor {
    void post(Job) override {}
  };
  struct Losing : Executors {
    std::shared_ptr<Executors> real;
    std::shared_ptr<Executor> main() override { return std::make_shared<Nowhere>(); }
    std::shared_ptr<Executor> background() override { return real->background(); }
    std::shared_ptr<Executor> serial(std::string label) override { return real->serial(std::move(label)); }
  };
  world.amend = [](Platform& platform) {
    const auto losing = std::make_shared<Losing>();
    losing->real = std::exchange(platform.executors, losing);
  };
  world.start();
  world.sdk->checkConsents([&] { trial.expect(false, "called where there is no queue"); });
  trial.expect(world.sdk->acceptOrReject(true).get(), "a decision waits for the main queue");
  world.sdk->settled().wait();
  return seen(world);
}

}  // namespace

std::vector<Row> hostRows() {
  return {
      {"callbacks-throw",
       "every callback throws",
       callbacksThatThrow,
       {"ready", "A callback of the host threw", "1=granted"}},
      {"callbacks-call-back", "callbacks call the facade, wait in it and unregister themselves", callbacksThatCallBack},
      {"callback-destroys", "a callback destroys the SDK", callbackThatDestroys},
      {"main-queue-loses", "the host's main queue loses every job", mainQueueThatLoses},
  };
}

}  // namespace quillon::test
