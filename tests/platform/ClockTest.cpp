// The contract of every clock, advancing the virtual clock, and calendar arithmetic.
#include <gtest/gtest.h>
#include <stdlib.h>

#include <atomic>
#include <functional>
#include <limits>
#include <memory>
#include <thread>
#include <vector>

#include "platform/linux/LinuxClock.h"
#include "platform/linux/WorkPool.h"
#include "platform/memory/VirtualClock.h"
#include "platform/parts/TimerQueue.h"
#include "tests/platform/Environment.h"
#include "tests/platform/Signal.h"

namespace quillon {
namespace {

using namespace std::chrono_literals;

using test::Signal;

WallTime utc(int year, unsigned month, unsigned day, std::chrono::milliseconds time = 0ms) {
  return std::chrono::sys_days(std::chrono::year(year) / std::chrono::month(month) / std::chrono::day(day)) + time;
}

// Sets the device's time zone for one test.
class DeviceZone {
 public:
  explicit DeviceZone(const char* name) { setenv("TZ", name, 1); }

 private:
  const test::Environment environment_{"TZ"};
};

std::unique_ptr<LinuxClock> linuxClock() {
  return std::make_unique<LinuxClock>(std::make_shared<WorkPool>("timers", 1));
}

struct ClockKind {
  const char* name;
  std::unique_ptr<Clock> (*make)();
  void (*pass)(Clock&, std::chrono::milliseconds);  // lets time pass; advances a virtual clock
};

const ClockKind clockKinds[] = {
    {"Linux", [] { return std::unique_ptr<Clock>(linuxClock()); }, [](Clock&, std::chrono::milliseconds) {}},
    {"Virtual", [] { return std::unique_ptr<Clock>(std::make_unique<VirtualClock>(utc(2024, 5, 1))); },
     [](Clock& clock, std::chrono::milliseconds time) { static_cast<VirtualClock&>(clock).advance(time); }},
};

class ClockContract : public testing::TestWithParam<ClockKind> {
 protected:
  void pass(std::chrono::milliseconds time) { GetParam().pass(*clock_, time); }

  std::unique_ptr<Clock> clock_ = GetParam().make();
};

TEST_P(ClockContract, RunsJobsInTheOrderOfTheirDelaysNeverEarlyAndPastOneThatThrows) {
  std::vector<int> order;
  Signal last;
  const WallTime start = clock_->now();
  WallTime seen;
  const auto begin = std::chrono::steady_clock::now();
  const auto third = clock_->after(90ms, [&] {
    seen = clock_->now();
    order.push_back(3);
    last.set();
  });
  const auto first = clock_->after(-1h, [&] {
    order.push_back(1);
    throw std::runtime_error("fault of a job");
  });
  const auto second = clock_->after(45ms, [&] { order.push_back(2); });
  pass(90ms);
  ASSERT_TRUE(last.wait());
  EXPECT_EQ(order, (std::vector{1, 2, 3}));
  const bool real = std::string_view(GetParam().name) == "Linux";
  EXPECT_GE(real ? std::chrono::steady_clock::now() - begin : seen - start, 90ms);
}

TEST_P(ClockContract, RepeatsUntilDroppedFromWithinItsOwnJob) {
  int count = 0;
  Signal dropped;
  std::unique_ptr<Timer> timer;
  Signal stored;  // the first firing may come before `timer` is assigned
  timer = clock_->every(10ms, [&, captured = std::make_shared<int>(7)] {
    EXPECT_TRUE(stored.wait());
    if (++count < 3) return;
    timer.reset();
    EXPECT_EQ(*captured, 7);
    dropped.set();
  });
  stored.set();
  pass(1s);
  ASSERT_TRUE(dropped.wait());
  Signal later;
  const auto after = clock_->after(50ms, [&] { later.set(); });
  pass(50ms);
  ASSERT_TRUE(later.wait());
  EXPECT_EQ(count, 3);
}

TEST_P(ClockContract, NoJobBeginsAfterItsTimerIsDropped) {
  for (int round = 0; round < 200; ++round) {
    auto alive = std::make_unique<std::atomic<int>>(0);
    auto timer = clock_->every(1ms, [&target = *alive] { ++target; });
    std::jthread other([&] { pass(3ms); });
    while (round % 2 == 0 && *alive == 0) std::this_thread::yield();
    timer.reset();
    alive.reset();  // a job run now would access freed memory
  }
}

TEST_P(ClockContract, DroppingATimerWaitsForItsJobOnAnotherThread) {
  Signal begun, release, dropped;
  std::atomic<bool> finished = false;
  auto timer = clock_->after(1ms, [&] {
    begun.set();
    EXPECT_TRUE(release.wait());
    finished = true;
  });
  std::jthread other([&] { pass(1ms); });
  ASSERT_TRUE(begun.wait());
  std::jthread dropper([&] {
    timer.reset();
    EXPECT_TRUE(finished);
    dropped.set();
  });
  EXPECT_FALSE(dropped.wait(50ms));
  release.set();
  EXPECT_TRUE(dropped.wait());
}

TEST_P(ClockContract, TimersOutliveTheirClockWithoutFiring) {
  const auto captured = std::make_shared<int>();
  auto timer = clock_->after(1h, [captured] { FAIL() << "fired without a clock"; });
  const auto wrapped = [] { FAIL() << "the delay wrapped around"; };
  const std::unique_ptr<Timer> endless[] = {
      clock_->after(std::chrono::milliseconds::max(), wrapped), clock_->every(std::chrono::years::max(), wrapped),
      clock_->after(std::chrono::duration<double>(std::numeric_limits<double>::quiet_NaN()), wrapped)};
  pass(1min);
  clock_.reset();
  timer.reset();
  EXPECT_EQ(captured.use_count(), 1);
}

INSTANTIATE_TEST_SUITE_P(All, ClockContract, testing::ValuesIn(clockKinds),
                         [](const auto& kind) { return kind.param.name; });

TEST(LinuxClockTest, CanBeDestroyedFromItsOwnTimer) {
  auto clock = std::shared_ptr<LinuxClock>(linuxClock());
  Signal gone;
  Signal begin;
  const auto timer = clock->after(1ms, [&] {
    EXPECT_TRUE(begin.wait());
    clock.reset();
    gone.set();
  });
  begin.set();
  EXPECT_TRUE(gone.wait());
}

TEST(TimerQueueTest, MissedPeriodsAreOneRun) {
  TimerQueue queue;
  int runs = 0;
  const auto timer = queue.add(0s, 60s, TimerQueue::Repeat::always, [&] { ++runs; });
  const auto runAt = [&](TimerQueue::Time now) {
    while (queue.runNext(now)) {
    }
    return runs;
  };
  EXPECT_EQ(runAt(60s), 1);
  EXPECT_EQ(runAt(125s), 2) << "a little late";
  EXPECT_EQ(queue.nextDue(), TimerQueue::Time(180s)) << "and so does not add up";
  EXPECT_EQ(runAt(485s), 3) << "stopped for five minutes";
  EXPECT_EQ(queue.nextDue(), TimerQueue::Time(545s));
}

TEST(CalendarTest, AddsMonthsAsPeopleDo) {
  const struct {
    WallTime from;
    std::int64_t months;
    WallTime to;
  } cases[] = {
      {utc(2024, 5, 1, 9h + 30min + 12s + 45ms), 12, utc(2025, 5, 1, 9h + 30min + 12s + 45ms)},
      {utc(2023, 1, 31), 1, utc(2023, 2, 28)},
      {utc(2024, 2, 29), 12, utc(2025, 2, 28)},
      {utc(2000, 1, 31), -11, utc(1999, 2, 28)},
      {utc(1970, 1, 31, 23h + 59min + 59s + 999ms), -1, utc(1969, 12, 31, 23h + 59min + 59s + 999ms)},
      {utc(2024, 5, 1), INT64_MAX, WallTime::max()},
      {utc(2024, 5, 1), INT64_MIN, WallTime::min()},
      {WallTime::max(), 12, WallTime::max()},
      {WallTime::min(), -12, WallTime::min()},
  };
  for (const TimeZone zone : {TimeZone::utc, TimeZone::device}) {
    const DeviceZone device("UTC0");
    const Calendar calendar(zone);
    for (const auto& c : cases) {
      EXPECT_EQ(calendar.addMonths(c.from, c.months), c.to)
          << calendar.localText(c.from) << " and " << c.months << " months";
    }
  }
}

TEST(CalendarTest, KeepsTheLocalTimeAcrossDaylightSaving) {
  const DeviceZone device("CET-1CEST,M3.5.0,M10.5.0/3");
  const Calendar calendar(TimeZone::device);
  const WallTime winter = utc(2024, 1, 10, 8h + 30min);  // 09:30 in local time
  const WallTime summer = calendar.addMonths(winter, 6);
  EXPECT_EQ(summer, utc(2024, 7, 10, 7h + 30min));
  EXPECT_EQ(calendar.localText(summer), "2024-07-10 09:30:00.000");
  EXPECT_EQ(calendar.addMonths(summer, -6), winter);
  // 02:30 on 31 March 2024 does not exist: one hour earlier or later is the nearest time.
  const WallTime skipped = calendar.addMonths(utc(2024, 1, 31, 1h + 30min), 2);
  EXPECT_TRUE(skipped == utc(2024, 3, 31, 30min) || skipped == utc(2024, 3, 31, 1h + 30min))
      << calendar.localText(skipped);
}

TEST(CalendarTest, WritesTheTimeOfTheDevicesZone) {
  EXPECT_EQ(Calendar(TimeZone::utc).localText(utc(1969, 12, 31, 23h + 59min + 59s + 1ms)), "1969-12-31 23:59:59.001");
  const WallTime time = utc(2024, 5, 1, 7h + 30min + 12s + 45ms);
  for (const auto& [zone, text] : {std::pair{"CET-1CEST,M3.5.0,M10.5.0/3", "2024-05-01 09:30:12.045"},
                                   {"<+0545>-5:45", "2024-05-01 13:15:12.045"},
                                   {"nonsense/zone", "2024-05-01 07:30:12.045"},
                                   {"", "2024-05-01 07:30:12.045"}}) {
    const DeviceZone device(zone);
    EXPECT_EQ(linuxClock()->localText(time), text) << zone;
    EXPECT_EQ(linuxClock()->addMonths(time, 12), utc(2025, 5, 1, 7h + 30min + 12s + 45ms)) << zone;
  }
}

}  // namespace
}  // namespace quillon
