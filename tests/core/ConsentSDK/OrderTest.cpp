// Calls take effect in order: on real threads, a real store and a real server.
#include <gtest/gtest.h>

#include <boost/json/serialize.hpp>

#include "core/Persistance/UserDefaults/StoreKeys.h"
#include "tests/support/Contains.h"
#include "tests/support/World.h"

namespace quillon::test {
namespace {

using enum ConsentStatus;

TEST(Order, OfTwoCallsTheLaterOneHolds) {
  World world;
  world.start();
  for (int run = 0; run < 50; ++run) {
    auto earlier = world.sdk->acceptOrReject(run % 2 == 0);
    auto later = world.sdk->acceptOrReject(run % 2 != 0);
    EXPECT_EQ(world.sdk->get(1), run % 2 != 0 ? granted : declined) << run;
    auto accepted = world.sdk->acceptOrReject(true);
    EXPECT_TRUE(world.sdk->set({.purposeId = 1}, declined));
    EXPECT_TRUE(earlier.get() && later.get() && accepted.get());
    EXPECT_EQ(world.sdk->get(1), declined) << run;
    if (::testing::Test::HasFailure()) return;
  }
}

// The server's last status equals the stored one, and nothing is pending.
TEST(Order, ADecisionThatReturnsToWhatItWasIsSentAllTheSame) {
  World world;
  world.start();
  HeldUploads held(world.server);
  ASSERT_TRUE(world.sdk->set({.purposeId = 1}, declined));
  auto first = world.sdk->uploadPendingConsents();
  held.waitForOne();
  ASSERT_TRUE(world.sdk->set({.purposeId = 1}, granted));
  ASSERT_TRUE(world.sdk->set({.purposeId = 1}, declined));
  held.release();
  first.wait();
  EXPECT_EQ(world.stored().pendingPurposes(), std::vector<std::int64_t>{1});
  EXPECT_TRUE(world.sdk->uploadPendingConsents().get());
  EXPECT_TRUE(world.stored().pendingPurposes().empty());
  EXPECT_EQ(world.uploads().size(), 2u);
}

// Simulates two processes with two stores on one file.
TEST(Order, OneProcessUploadsAtATimeAndTheLatestDecisionEndsAtTheServer) {
  World world;
  world.start();
  ConsentSDK other(world.process());
  other.setup(world.options());
  other.settled().wait();
  HeldUploads held(world.server);
  ASSERT_TRUE(world.sdk->set({.purposeId = 1}, declined));
  auto slow = world.sdk->uploadPendingConsents();
  held.waitForOne();
  ASSERT_TRUE(other.set({.purposeId = 1}, granted));
  EXPECT_FALSE(other.uploadPendingConsents().get()) << "another process's turn";
  ASSERT_TRUE(other.set({.purposeId = 1}, declined));
  held.release();
  slow.wait();
  EXPECT_TRUE(other.uploadPendingConsents().get());
  EXPECT_EQ(world.uploads().size(), 2u);
  const auto newest = world.platform.store->open(key::suiteName, {}).value()->read(0).value();
  EXPECT_TRUE(StoredValues(*newest.entries).pendingPurposes().empty());
  other.close();
}

TEST(Order, TheLastSetUpHoldsWhateverAnswersFirst) {
  for (const bool isChannel : {false, true}) {
    World world;
    world.server.onConfiguration([](const auto& request, auto& response) {
      auto document = validConfiguration();
      document["version"] =
          request.path.find("/draft/") != std::string::npos || request.path.ends_with("_de.json") ? 7 : 5;
      json(boost::json::serialize(document))(request, response);
    });
    world.restart();
    for (int run = 0; run < 10; ++run) {
      ConsentSDKOptions earlier = world.options();
      if (isChannel)
        earlier.testingMode = true;
      else
        earlier.languageCode = "de";
      world.sdk->setup(earlier);
      world.sdk->setup(world.options());
      world.sdk->settled().wait();
      EXPECT_EQ(world.sdk->getStatus(), SDKStatus::ready);
      EXPECT_TRUE(contains(fileBytes(world.file()), "\"version\":5")) << run;
      EXPECT_EQ(world.text(key::languageCode), "en");
      if (::testing::Test::HasFailure()) return;
    }
  }
}

TEST(Order, ManyChecksAtOnceAreOne) {
  World world;
  world.start();
  world.advance(std::chrono::hours(2));
  const auto before = world.server.seen(configurationPath).size();
  std::vector<std::future<void>> checks;
  for (int i = 0; i < 20; ++i) checks.push_back(world.sdk->checkConsents());
  for (auto& check : checks) check.wait();
  EXPECT_EQ(world.server.seen(configurationPath).size(), before + 1);
}

}  // namespace
}  // namespace quillon::test
