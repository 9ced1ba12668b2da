#include <gtest/gtest.h>

#include <boost/json.hpp>
#include <map>
#include <random>
#include <thread>
#include <tuple>
#include <utility>

#include "core/Persistance/UserDefaults/StoreKeys.h"
#include "tests/support/World.h"

namespace quillon::test {
namespace {

// A clock whose first one-shot timer fires before the thread that started it continues, as when that thread is delayed.
class StallingClock : public VirtualClock {
 public:
  StallingClock(WallTime start, std::function<void()> meanwhile)
      : VirtualClock(start), meanwhile_(std::move(meanwhile)) {}

 protected:
  std::unique_ptr<Timer> makeTimer(std::chrono::milliseconds delay, Repeat repeat, Job job) override {
    if (repeat == Repeat::always || std::exchange(stalled_, true)) {
      return VirtualClock::makeTimer(delay, repeat, std::move(job));
    }
    job();
    meanwhile_();
    return std::make_unique<Timer>();
  }

 private:
  const std::function<void()> meanwhile_;
  bool stalled_ = false;
};

TEST(Concurrency, StalledDecisionDoesNotCancelTheUploadOfALaterOne) {
  World world;
  world.clock = std::make_shared<StallingClock>(world.clock->now(), [&] {
    world.sdk->settled().wait();  // the first upload
    EXPECT_TRUE(world.sdk->set({.purposeId = 1}, ConsentStatus::granted));
  });
  world.start();
  EXPECT_TRUE(world.sdk->set({.purposeId = 1}, ConsentStatus::declined));
  world.advance(std::chrono::seconds(1));
  EXPECT_TRUE(world.stored().pendingPurposes().empty());
  EXPECT_EQ(world.uploads().size(), 2u);
}

// Decisions, checks, uploads, permission and network changes from many threads, against a server that fails every third
// time: afterwards the server has the latest decision on every purpose.
TEST(Concurrency, NoDecisionIsDroppedBetweenUploads) {
  World world;
  std::map<std::int64_t, std::string> recorded;
  std::mutex mutex;
  int requests = 0;
  world.server.onUpload([&](const auto& request, auto& response) {
    const std::scoped_lock lock(mutex);
    if (++requests % 3 == 0) {
      response.status = 503;
      return;
    }
    const auto body = boost::json::parse(request.body);
    for (const auto& consent : body.at("purpose_consents").as_array()) {
      recorded[consent.at("purpose_id").as_int64()] = consent.at("consent_status").as_string().c_str();
    }
    json(saved)(request, response);
  });
  auto document = validConfiguration();
  document["is_att_enabled"] = false;
  world.server.serve(document);
  world.start();

  std::vector<std::jthread> threads;
  for (unsigned seed = 0; seed < 4; ++seed) {
    threads.emplace_back([&world, seed] {
      std::mt19937 random(seed);
      for (int i = 0; i < 40; ++i) {
        const auto id = 1 + static_cast<std::int64_t>(random() % 3);
        EXPECT_TRUE(
            world.sdk->set({.purposeId = id}, random() % 2 == 0 ? ConsentStatus::granted : ConsentStatus::declined));
        switch (random() % 6) {
          case 0:
            world.sdk->uploadPendingConsents().wait();
            break;
          case 1:
            world.sdk->checkConsents([] {});
            break;
          case 2:
            world.permissions->set(VantariKey::cameraUsageDescription, static_cast<int>(random() % 4));
            break;
          case 3:
            world.network->set(random() % 2 == 0 ? NetworkStatus::satisfied : NetworkStatus::unsatisfied);
            break;
          case 4:
            world.clock->advance(std::chrono::seconds(1));
            break;
          default:
            std::ignore = world.sdk->get(id);
        }
      }
    });
  }
  threads.clear();
  world.drainMainQueue();
  world.sdk->settled().wait();
  while (!world.sdk->uploadPendingConsents().get()) {  // the server accepts at the second attempt
  }
  const std::scoped_lock lock(mutex);
  for (std::int64_t id = 1; id <= 3; ++id) {
    EXPECT_EQ(recorded.at(id), rawValue(world.sdk->get(id))) << "purpose " << id;
  }
  EXPECT_TRUE(world.stored().pendingPurposes().empty());
  EXPECT_TRUE(world.stored().pendingPermissions().empty());
}

}  // namespace
}  // namespace quillon::test
