// What every implementation of the executors promises, and what only real threads can break.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <stdexcept>
#include <thread>
#include <vector>

#include "platform/linux/AsioExecutors.h"
#include "platform/memory/ManualExecutors.h"
#include "tests/platform/Signal.h"

namespace quillon {
namespace {

using test::Signal;

// How a test waits for what it posted.
struct Kind {
  const char* name;
  std::unique_ptr<Executors> (*make)();
  void (*settle)(Executors&);
};

const Kind kinds[] = {
    {"Asio", [] { return std::unique_ptr<Executors>(std::make_unique<AsioExecutors>()); }, [](Executors&) {}},
    {"Manual", [] { return std::unique_ptr<Executors>(std::make_unique<ManualExecutors>()); },
     [](Executors& executors) { static_cast<ManualExecutors&>(executors).runUntilIdle(); }},
};

enum class Queue { main, background, serial };

class ExecutorsContract : public testing::TestWithParam<Kind> {
 protected:
  std::shared_ptr<Executor> queue(Queue which) {
    switch (which) {
      case Queue::main:
        return executors_->main();
      case Queue::background:
        return executors_->background();
      case Queue::serial:
        return executors_->serial("org.quillon.test");
    }
    return nullptr;
  }

  // Posts to that queue and waits until the job has run.
  void flush(Executor& executor) {
    Signal ran;
    executor.post([&] { ran.set(); });
    GetParam().settle(*executors_);
    ASSERT_TRUE(ran.wait());
  }

  std::unique_ptr<Executors> executors_ = GetParam().make();
};

TEST_P(ExecutorsContract, MainAndSerialQueuesKeepTheOrderOfPostingAndRunOneJobAtATime) {
  for (const Queue which : {Queue::main, Queue::serial}) {
    const auto executor = queue(which);
    std::vector<int> seen;  // unguarded on purpose: the thread sanitizer sees two jobs at a time
    for (int i = 0; i < 1000; ++i) executor->post([&seen, i] { seen.push_back(i); });
    flush(*executor);
    ASSERT_EQ(seen.size(), 1000u);
    EXPECT_TRUE(std::is_sorted(seen.begin(), seen.end()));
  }
}

TEST_P(ExecutorsContract, NeverRunsAJobWithinPost) {
  for (const Queue which : {Queue::main, Queue::background, Queue::serial}) {
    const auto executor = queue(which);
    bool nested = true;
    Signal ran;
    executor->post([&] {
      thread_local bool inside = false;  // what another thread does meanwhile is no concern of this one
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

TEST_P(ExecutorsContract, GoesOnAfterAJobThatThrows) {
  for (const Queue which : {Queue::main, Queue::background, Queue::serial}) {
    const auto executor = queue(which);
    for (int i = 0; i < 4; ++i) executor->post([] { throw std::runtime_error("fault of the host"); });
    flush(*executor);
  }
}

TEST_P(ExecutorsContract, QueuesOutliveTheirOwnerAndDropWhatTheyAreGiven) {
  const auto main = queue(Queue::main);
  const auto serial = queue(Queue::serial);
  flush(*main);
  executors_.reset();
  const auto captured = std::make_shared<int>();
  for (const auto& executor : {main, serial}) {
    executor->post([captured] { FAIL() << "ran without an owner"; });
  }
  EXPECT_EQ(captured.use_count(), 1) << "a dropped job keeps what it captured";
}

INSTANTIATE_TEST_SUITE_P(All, ExecutorsContract, testing::ValuesIn(kinds),
                         [](const auto& kind) { return kind.param.name; });

TEST(ManualExecutorsTest, RunsJobsThatJobsPostAndCountsThem) {
  ManualExecutors executors;
  const auto queue = executors.background();
  queue->post([&] { queue->post([&] { EXPECT_EQ(executors.runUntilIdle(), 0u) << "a job ran within a job"; }); });
  EXPECT_EQ(executors.runUntilIdle(), 2u);
  EXPECT_EQ(executors.runUntilIdle(), 0u);
}

TEST(AsioExecutorsTest, RunsBackgroundJobsAtTheSameTime) {
  Signal first, second;
  bool met = false;
  {
    AsioExecutors executors(nullptr, 2);
    executors.background()->post([&] {
      first.set();
      met = second.wait();
    });
    executors.background()->post([&] {
      ASSERT_TRUE(first.wait());
      second.set();
    });
    ASSERT_TRUE(second.wait());
  }
  EXPECT_TRUE(met);
}

TEST(AsioExecutorsTest, SerialQueuesDoNotWaitForEachOther) {
  Signal begun, release, ran;
  AsioExecutors executors(nullptr, 2);
  executors.serial("held")->post([&] {
    begun.set();
    EXPECT_TRUE(release.wait());
  });
  ASSERT_TRUE(begun.wait());
  executors.serial("free")->post([&] { ran.set(); });
  EXPECT_TRUE(ran.wait());
  release.set();
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
  // Whether the owner has closed its queue by now shows in what the queue does with a further job.
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
  for (const Queue which : {Queue::main, Queue::background, Queue::serial}) {
    auto executors = std::make_shared<AsioExecutors>(nullptr, 2);
    const auto queue = which == Queue::main         ? executors->main()
                       : which == Queue::background ? executors->background()
                                                    : executors->serial("last");
    Signal gone;
    queue->post([owner = std::move(executors), &gone]() mutable {
      owner.reset();
      gone.set();
    });
    ASSERT_TRUE(gone.wait());
  }
}

TEST(AsioExecutorsTest, AHostsMainLoopRunsTheMainQueueUntilTheOwnerGoesAway) {
  std::vector<std::function<void()>> loop;
  auto executors = std::make_unique<AsioExecutors>([&](std::function<void()> job) { loop.push_back(std::move(job)); });
  std::thread::id thread;
  const auto main = executors->main();
  main->post([&] { thread = std::this_thread::get_id(); });
  main->post([] { throw std::runtime_error("fault of the host"); });
  main->post([] { FAIL() << "ran after the owner was gone"; });
  ASSERT_EQ(loop.size(), 3u);
  loop[0]();
  EXPECT_EQ(thread, std::this_thread::get_id());
  EXPECT_NO_THROW(loop[1]());
  executors.reset();
  loop[2]();
  main->post([] {});
  EXPECT_EQ(loop.size(), 3u);
}

TEST(AsioExecutorsTest, AHostWhoseMainLoopThrowsHarmsNobody) {
  AsioExecutors executors([](std::function<void()>) { throw std::runtime_error("loop is closed"); });
  EXPECT_NO_THROW(executors.main()->post([] {}));
}

}  // namespace
}  // namespace quillon
