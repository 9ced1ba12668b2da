#include <gtest/gtest.h>

#include <thread>

#include "core/Persistance/UserDefaults/StoreKeys.h"
#include "tests/support/Contains.h"
#include "tests/support/World.h"

namespace quillon::test {
namespace {

using enum ConsentStatus;

TEST(Setup, KeepsOneSubjectUntilItIsRemoved) {
  World world;
  ConsentSDKOptions options = world.options();
  options.subjectId.reset();
  world.start(options);
  const auto subject = world.text(key::subjectId).value();
  EXPECT_EQ(subject.size(), 36u);
  world.restart();
  world.start(options);
  EXPECT_EQ(world.text(key::subjectId), subject);
  world.sdk->removeConsents();
  world.start(options);
  EXPECT_NE(world.text(key::subjectId), subject);
  options.subjectId = "given by the host";
  world.start(options);
  EXPECT_EQ(world.text(key::subjectId), "given by the host");
}

// Any operation called first is answered from the store, on any thread.
TEST(Setup, IsNotWaitedForByAnyOperation) {
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
      {"check", [&] { return sdk.checkConsents().wait_for(std::chrono::seconds(10)) == std::future_status::ready; }},
      {"upload", [&] { return !sdk.uploadPendingConsents().get(); }},
      {"status", [&] { return sdk.getStatus() == SDKStatus::unavailable && sdk.sdkVersion() == "1.2.3"; }},
  };
  std::jthread([&] {
    for (const auto& [name, isRight] : answers) EXPECT_TRUE(isRight()) << name;
  }).join();
  EXPECT_FALSE(contains(world.log(), "[ERROR]"));
}

}  // namespace
}  // namespace quillon::test
