// The contract of every executor implementation, and what only real threads can break.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <stdexcept>
#include <thread>
#include <utility>
#include <vector>

#include "platform/linux/AsioExecutors.h"
#include "platform/memory/ManualExecutors.h"
#include "tests/platform/Signal.h"

namespace quillon {
namespace {

using test::Signal;

// How to wait for posted jobs.
struct ExecutorsKind {
  const char* name;
  std::unique_ptr<Executors> (*make)();
  void (*settle)(Executors&);
};

const ExecutorsKind executorsKinds[] = {
    {"Asio", [] { return std::unique_ptr<Executors>(std::make_unique<AsioExecutors>()); }, [](Executors&) {}},
    {"Manual", [] { return std::unique_ptr<Executors>(std::make_unique<ManualExecutors>()); },
     [](Executors& executors) { static_cast<ManualExecutors&>(executors).runUntilIdle(); }},
};

struct Queues {
  explicit Queues(Executors& of) : main(of.main()), background(of.background()), serial(of.serial("test")) {}
  std::shared_ptr<Executor> main, background, serial;
};

class ExecutorsContract : public testing::TestWithParam<ExecutorsKind> {
 protected:
  // Posts to the queue and waits until the job has run.
  void flush(Executor& executor) {
    Signal ran;
    executor.post([&] { ran.set(); });
    GetParam().settle(*executors_);
    ASSERT_TRUE(ran.wait());
  }

  std::unique_ptr<Executors> executors_ = GetParam().make();
  const Queues queues_{*executors_};
};

TEST_P(ExecutorsContract, MainAndSerialQueuesKeepTheOrderOfPostingAndRunOneJobAtATime) {
  for (const auto& executor : {queues_.main, queues_.serial}) {
    std::vector<int> seen;  // unguarded on purpose: the thread sanitizer detects concurrent jobs
    for (int i = 0; i < 1000; ++i) executor->post([&seen, i] { seen.push_back(i); });
    flush(*executor);
    ASSERT_EQ(seen.size(), 1000u);
    EXPECT_TRUE(std::is_sorted(seen.begin(), seen.end()));
  }
}

TEST_P(ExecutorsContract, NeverRunsAJobWithinPostAndGoesOnAfterOneThatThrows) {
  for (const auto& executor : {queues_.main, queues_.background, queues_.serial}) {
    for (int i = 0; i < 4; ++i) executor->post([] { throw std::runtime_error("fault of the host"); });
    bool nested = true;
    Signal ran;
    executor->post([&] {
      thread_local bool inside = false;  // per thread, so that other threads do not matter
      inside = true;
      executor->post([&] {
        nested = inside;
        ran.set();
      });
      inside = false;
    });
    GetParam().settle(*executors_);
    ASSERT_TRUE(ran.wait());
    EXPECT_FALSE(nested);
  }
}

TEST_P(ExecutorsContract, QueuesOutliveTheirOwnerAndDropWhatTheyAreGiven) {
  flush(*queues_.main);
  executors_.reset();
  const auto captured = std::make_shared<int>();
  for (const auto& executor : {queues_.main, queues_.background, queues_.serial}) {
    executor->post([captured] { FAIL() << "ran without an owner"; });
  }
  EXPECT_EQ(captured.use_count(), 1) << "a dropped job keeps what it captured";
}

INSTANTIATE_TEST_SUITE_P(All, ExecutorsContract, testing::ValuesIn(executorsKinds),
                         [](const auto& kind) { return kind.param.name; });

TEST(AsioExecutorsTest, NeitherBackgroundJobsNorSerialQueuesWaitForEachOther) {
  AsioExecutors executors(nullptr, 2);
  for (const auto& [held, free] : {std::pair{executors.background(), executors.background()},
                                   {executors.serial("held"), executors.serial("free")}}) {
    Signal begun, release, ran;
    held->post([&] {
      begun.set();
      EXPECT_TRUE(release.wait());
      ran.set();
    });
    ASSERT_TRUE(begun.wait());
    free->post([&] { release.set(); });
    EXPECT_TRUE(ran.wait());
  }
}

TEST(AsioExecutorsTest, DropsJobsThatHaveNotBegunWhenTheOwnerGoesAway) {
  auto executors = std::make_unique<AsioExecutors>(nullptr, 1);
  const auto queue = executors->serial("jobs");
  Signal begun, release;
  std::atomic<bool> finished = false;
  std::atomic<int> later = 0;
  const auto captured = std::make_shared<int>();
  queue->post([&] {
    begun.set();
    EXPECT_TRUE(release.wait());
    finished = true;
  });
  for (int i = 0; i < 100; ++i) queue->post([&later, captured] { ++later; });
  ASSERT_TRUE(begun.wait());

  std::thread owner([&] { executors.reset(); });
  // Whether the owner has closed its queue shows when a further job is posted.
  while (true) {
    auto probe = std::make_shared<int>();
    queue->post([probe] {});
    if (probe.use_count() == 1) break;
    std::this_thread::yield();
  }
  release.set();
  owner.join();
  EXPECT_TRUE(finished) << "did not wait for the job under way";
  EXPECT_EQ(later, 0);
  EXPECT_EQ(captured.use_count(), 1);
}

TEST(AsioExecutorsTest, CanBeDestroyedFromEachOfItsOwnQueues) {
  for (const auto which : {&Queues::main, &Queues::background, &Queues::serial}) {
    auto executors = std::make_shared<AsioExecutors>(nullptr, 2);
    const Queues queues(*executors);
    Signal gone;
    (queues.*which)->post([owner = std::move(executors), &gone]() mutable {
      owner.reset();
      gone.set();
    });
    ASSERT_TRUE(gone.wait());
  }
}

TEST(AsioExecutorsTest, AHostsMainLoopRunsTheMainQueueUntilTheOwnerGoesAway) {
  std::vector<std::function<void()>> loop;
  auto executors = std::make_unique<AsioExecutors>([&](std::function<void()> job) {
    if (loop.size() == 3) throw std::runtime_error("loop is closed");
    loop.push_back(std::move(job));
  });
  std::thread::id thread;
  const auto main = executors->main();
  main->post([&] { thread = std::this_thread::get_id(); });
  main->post([] { throw std::runtime_error("fault of the host"); });
  main->post([] { FAIL() << "ran after the owner was gone"; });
  EXPECT_NO_THROW(main->post([] {}));
  ASSERT_EQ(loop.size(), 3u);
  loop[0]();
  EXPECT_EQ(thread, std::this_thread::get_id());
  EXPECT_NO_THROW(loop[1]());
  executors.reset();
  loop[2]();
  loop.clear();
  main->post([] {});
  EXPECT_TRUE(loop.empty());
}

}  // namespace
}  // namespace quillon
