// Calls take effect in order: on real threads, a real store and a real server.
#include <gtest/gtest.h>

#include <boost/json.hpp>
#include <map>
#include <random>
#include <thread>

#include "platform/memory/FailingFileSystem.h"
#include "tests/support/Contains.h"
#include "tests/support/World.h"

namespace quillon::test {
namespace {

using enum ConsentStatus;

TEST(Order, TheLastSetUpHoldsWhateverAnswersFirst) {
  for (const bool isChannel : {false, true}) {
    World world;
    world.server.onConfiguration([](const auto& request, auto& response) {
      const bool isEarlier = contains(request.path, "/draft/") || request.path.ends_with("_de.json");
      json(boost::json::serialize(configurationWith({{"version", isEarlier ? 7 : 5}})))(request, response);
    });
    world.restart();
    ConsentSDKOptions earlier = world.options();
    earlier.testingMode = isChannel;
    earlier.languageCode = isChannel ? "en" : "de";
    for (int run = 0; run < 10 && !::testing::Test::HasFailure(); ++run) {
      world.sdk->setup(earlier);
      world.sdk->setup(world.options());
      world.sdk->settled().wait();
      EXPECT_EQ(world.sdk->getStatus(), SDKStatus::ready);
      EXPECT_TRUE(contains(fileBytes(world.file()), "\"version\":5")) << run;
    }
  }
}

// Pauses the given thread where a set-up asks for the folder.
class PausingFiles : public FailingFileSystem {
 public:
  PausingFiles(std::shared_ptr<FileSystem> real, std::function<void()>& pause)
      : FailingFileSystem(std::move(real), [](std::string_view) { return false; }), pause_(pause) {}

  std::optional<std::filesystem::path> applicationSupportDirectory() const override {
    if (std::this_thread::get_id() == thread_ && pause_) std::exchange(pause_, nullptr)();
    return FailingFileSystem::applicationSupportDirectory();
  }

 private:
  const std::thread::id thread_ = std::this_thread::get_id();
  std::function<void()>& pause_;
};

// Otherwise what it saves is removed by the set-up's reset, perhaps before it is read.
TEST(Order, AnEarlierLoadLoadsNothingForASetUpThatHasNotYetResetTheCache) {
  World world;
  std::function<void()> pause;
  world.amend = [&](Platform& platform) { platform.files = std::make_shared<PausingFiles>(platform.files, pause); };
  const HeldAnswers german;
  world.server.onConfiguration([&](const auto& request, auto& response) {
    const auto answer = json(boost::json::serialize(validConfiguration()));
    (request.path.ends_with("_de.json") ? german.before(answer) : answer)(request, response);
  });
  world.restart();
  ConsentSDKOptions earlier = world.options();
  earlier.languageCode = "de";
  world.sdk->setup(earlier);
  german.waitForOne();
  std::size_t during = 0;
  pause = [&] {
    german.release();
    world.sdk->settled().wait();
    during = world.server.seen(configurationPath).size();
  };
  world.start();
  EXPECT_EQ(during, 1u);
  EXPECT_EQ(world.server.seen(configurationPath).size(), 2u);
  EXPECT_EQ(world.sdk->getStatus(), SDKStatus::ready);
}

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
    EXPECT_TRUE(world.sdk->set({.purposeId = 1}, granted));
  });
  world.start();
  EXPECT_TRUE(world.sdk->set({.purposeId = 1}, declined));
  world.advance(std::chrono::seconds(1));
  EXPECT_TRUE(world.stored().pendingPurposes().empty());
  EXPECT_EQ(world.uploads().size(), 2u);
}

// Decisions, checks and uploads from many threads, against a server that fails every third time: afterwards it has the
// latest decision on every purpose.
TEST(Concurrency, NoDecisionIsDroppedBetweenUploads) {
  World world;
  std::map<std::int64_t, std::string> recorded;
  std::mutex mutex;
  int requests = 0;
  world.server.onUpload([&](const auto& request, auto& response) {
    const std::scoped_lock lock(mutex);
    if (++requests % 3 == 0) return json("", 503)(request, response);
    const auto body = boost::json::parse(request.body);
    for (const auto& consent : body.at("purpose_consents").as_array()) {
      recorded[consent.at("purpose_id").as_int64()] = consent.at("consent_status").as_string().c_str();
    }
    json(saved)(request, response);
  });
  world.server.serve(configurationWith({{"is_att_enabled", false}}));
  world.start();
  std::vector<std::jthread> threads;
  for (unsigned seed = 0; seed < 4; ++seed) {
    threads.emplace_back([&world, seed] {
      std::mt19937 random(seed);
      for (int i = 0; i < 40; ++i) {
        const auto id = 1 + static_cast<std::int64_t>(random() % 3);
        EXPECT_TRUE(world.sdk->set({.purposeId = id}, random() % 2 == 0 ? granted : declined));
        const auto act = random() % 4;
        if (act == 0) world.sdk->uploadPendingConsents().wait();
        if (act == 1) world.sdk->checkConsents([] {});
        if (act == 2) world.clock->advance(std::chrono::seconds(1));
      }
    });
  }
  threads.clear();
  world.settle();
  while (!world.sdk->uploadPendingConsents().get()) {  // the server accepts at the second attempt
  }
  const std::scoped_lock lock(mutex);
  for (std::int64_t id = 1; id <= 3; ++id) EXPECT_EQ(recorded.at(id), rawValue(world.sdk->get(id))) << id;
  EXPECT_TRUE(world.stored().pendingPurposes().empty());
}

}  // namespace
}  // namespace quillon::test
