// The contract of every store, tested on all implementations.
#include "platform/KeyValueSuite.h"

#include <gtest/gtest.h>

#include <limits>
#include <stdexcept>
#include <thread>
#include <utility>

#include "platform/linux/SqliteStore.h"
#include "platform/linux/WorkPool.h"
#include "platform/memory/MemoryStore.h"
#include "tests/platform/Signal.h"
#include "tests/support/Contains.h"
#include "tests/support/TemporaryFolder.h"

namespace quillon {

namespace {

using namespace std::chrono_literals;
using test::contains;
using test::Signal;

// A second store shares the suite, as another process does, and shows what a later process finds, where possible.
struct OnDisk {
  test::TemporaryFolder folder{test::TemporaryFolder::fastParent()};
  std::shared_ptr<WorkPool> pool = std::make_shared<WorkPool>("work", 2);
  SqliteStore store{folder.path() / "app", pool};
  SqliteStore later{folder.path() / "app", pool};
};

struct InMemory {
  MemoryStore store;
  std::shared_ptr<MemoryStore> another = store.another();
  MemoryStore& later = *another;
};

KeyValueSuite::Edit always(SuiteChanges changes) {
  return [changes = std::move(changes)](const SuiteEntries&) { return changes; };
}

SuiteEntries content(const KeyValueSuite& suite) {
  return *suite.snapshot();
}

template <class World>
class KeyValueSuiteContract : public testing::Test {
 protected:
  World world_;
  std::shared_ptr<KeyValueSuite> suite_ = world_.store.open("suite", {}).value();
};

}  // namespace

using Worlds = testing::Types<OnDisk, InMemory>;
TYPED_TEST_SUITE(KeyValueSuiteContract, Worlds);

TYPED_TEST(KeyValueSuiteContract, GivesEveryTypeBackAsWritten) {
  const SuiteChanges changes{
      {"no", false},
      {"yes", true},
      {"least", std::numeric_limits<std::int64_t>::min()},
      {"most", std::numeric_limits<std::int64_t>::max()},
      {"empty text", std::string()},
      {"text", std::string("gr\u00fc\u00df\n'\"; DROP TABLE entries")},
      {"text with NUL", std::string("a\0b", 3)},
      {"text not UTF-8", std::string("\xff\xfe\x80")},
      {"date", PropertyDate(1'700'000'000'123ms)},
      {"date before 1970", PropertyDate(-1ms)},
      {"no integers", std::vector<std::int64_t>()},
      {"integers", std::vector<std::int64_t>{3, -1, std::numeric_limits<std::int64_t>::min()}},
      {"no strings", std::vector<std::string>()},
      {"strings", std::vector<std::string>{"", "a,\"b\"]", std::string("\0", 1), "\xff"}},
      {std::string("key\0\n\xff", 6), true},
  };
  ASSERT_TRUE(this->suite_->update(always(changes)));
  SuiteEntries expected;
  for (const auto& [key, value] : changes) expected.emplace(key, *value);
  EXPECT_EQ(content(*this->suite_), expected);
  EXPECT_EQ(content(*this->world_.later.open("suite", {}).value()), expected);
}

TYPED_TEST(KeyValueSuiteContract, AFailedEditChangesNothingAndSaysWhy) {
  ASSERT_TRUE(this->suite_->update(always({{"key", true}})));
  const auto thrown =
      this->suite_->update([](const SuiteEntries&) -> SuiteChanges { throw std::runtime_error("changed my mind"); });
  ASSERT_FALSE(thrown);
  EXPECT_TRUE(contains(thrown.error(), "changed my mind"));
  EXPECT_FALSE(this->suite_->update(always({{"", true}, {"other", true}}))) << "a key is empty";
  EXPECT_EQ(content(*this->suite_), (SuiteEntries{{"key", true}}));
  const auto other = this->world_.later.open("suite", {}).value();
  EXPECT_TRUE(other->update(always({{"other", true}}))) << "nobody is held up";
}

// Appends these texts with the changes.
KeyValueSuite::Edit recording(std::vector<std::string> texts, SuiteChanges changes = {}) {
  SuiteUpdate update(std::move(changes));
  update.appended = std::move(texts);
  return [update = std::move(update)](const SuiteEntries&) { return update; };
}

// Marks what is unmarked.
KeyValueSuite::Edit marking(std::function<SuiteUpdate::Marking(const std::vector<JournalRecord>&)> mark) {
  SuiteUpdate update;
  update.markRecords = std::move(mark);
  return [update = std::move(update)](const SuiteEntries&) { return update; };
}

TYPED_TEST(KeyValueSuiteContract, JournalIsAppendedToSettledOnceAndCleared) {
  const auto journal = [](KeyValueSuite& suite, std::int64_t before = 1'000'000, std::size_t count = 10) {
    const auto page = suite.journal(before, count);
    return page ? page->records : std::vector<JournalRecord>{{-1, page.error(), {}}};
  };
  EXPECT_TRUE(journal(*this->suite_).empty());
  ASSERT_TRUE(this->suite_->update(recording({"first", std::string("a\0b'\n\xff", 6)}, {{"key", true}})));
  ASSERT_TRUE(this->suite_->update(recording({"third"})));
  EXPECT_EQ(content(*this->suite_), (SuiteEntries{{"key", true}}));
  ASSERT_TRUE(this->suite_->update(marking([](const auto& unmarked) {
    EXPECT_EQ(unmarked.size(), 3u);
    EXPECT_EQ(unmarked.front().text, "third");
    return SuiteUpdate::Marking{{{unmarked[1].number, "sent"}}, {{"settled", true}}};
  })));
  EXPECT_EQ(content(*this->suite_), (SuiteEntries{{"key", true}, {"settled", true}}));
  const std::vector<JournalRecord> expected{
      {3, "third", ""}, {2, std::string("a\0b'\n\xff", 6), "sent"}, {1, "first", ""}};
  EXPECT_EQ(journal(*this->suite_), expected);
  EXPECT_EQ(journal(*this->world_.later.open("suite", {}).value()), expected);
  EXPECT_EQ(journal(*this->suite_, 3, 1), std::vector<JournalRecord>{expected[1]});

  EXPECT_FALSE(
      this->suite_->update(recording({"fine", std::string(maximumJournalTextBytes + 1, 'x')}, {{"other", true}})));
  EXPECT_FALSE(this->suite_->update([](const SuiteEntries&) {
    SuiteUpdate update(SuiteChanges{{"other", true}});
    update.appended = {"fine"};
    update.markRecords = [](const std::vector<JournalRecord>&) -> SuiteUpdate::Marking { throw 1; };
    return update;
  }));
  EXPECT_EQ(content(*this->suite_).size(), 2u);
  EXPECT_EQ(journal(*this->suite_), expected);
  ASSERT_TRUE(this->suite_->update([](const SuiteEntries&) {
    SuiteUpdate update;
    update.appended = {"afterwards"};
    update.clearsJournal = true;
    return update;
  }));
  EXPECT_EQ(journal(*this->suite_), (std::vector<JournalRecord>{{1, "afterwards", ""}}));
}

TYPED_TEST(KeyValueSuiteContract, JournalLosesItsOldestRecordsFirst) {
  ASSERT_TRUE(this->suite_->update(recording(std::vector<std::string>(maximumJournalRecords, "old"))));
  EXPECT_EQ(this->suite_->journal(2, 10)->records.size(), 1u) << "no record goes before there are too many";
  ASSERT_TRUE(this->suite_->update(recording({"new"})));
  const auto all = this->suite_->journal(1'000'000, 1'000'000);
  ASSERT_TRUE(all);
  EXPECT_EQ(all->records.size(), maximumJournalRecords - journalRecordsDroppedAtOnce + 1);
  EXPECT_EQ(all->records.front(), (JournalRecord{maximumJournalRecords + 1, "new", ""}));
  EXPECT_EQ(all->records.back().number, static_cast<std::int64_t>(journalRecordsDroppedAtOnce) + 1);
}

TYPED_TEST(KeyValueSuiteContract, AReadingIsTheNewestCommitOfAnyProcessWithItsUnsettledRecords) {
  const auto other = this->world_.later.open("suite", {}).value();
  ASSERT_TRUE(this->suite_->read(10)->unmarked.empty());
  ASSERT_TRUE(other->update(recording({"first", "second"}, {{"key", true}})));
  const auto reading = this->suite_->read(10);
  ASSERT_TRUE(reading);
  EXPECT_EQ(*reading->entries, (SuiteEntries{{"key", true}})) << "however lately the file was looked at";
  EXPECT_EQ(reading->unmarked, (std::vector<JournalRecord>{{2, "second", ""}, {1, "first", ""}}));
  EXPECT_EQ(this->suite_->read(1)->unmarked, (std::vector<JournalRecord>{{2, "second", ""}}));
  ASSERT_TRUE(other->update(marking([](const auto&) { return SuiteUpdate::Marking{{{1, "sent"}}, {}}; })));
  EXPECT_EQ(this->suite_->read(10)->unmarked, (std::vector<JournalRecord>{{2, "second", ""}}));
}

TYPED_TEST(KeyValueSuiteContract, TellsThoseWhoObserveOfWhatOthersCommitAndOfNothingElse) {
  const auto other = this->world_.later.open("suite", {}).value();
  Signal heard;
  std::atomic<int> calls = 0;
  bool showsIt = false;
  auto faulty = this->suite_->observe([] { throw std::runtime_error("fault of an observer"); });
  auto subscription = this->suite_->observe([&] {
    ++calls;
    showsIt = this->suite_->snapshot()->contains("theirs");
    heard.set();
  });
  ASSERT_TRUE(this->suite_->update(always({{"mine", true}})));
  ASSERT_TRUE(other->update(always({{"theirs", true}})));
  ASSERT_TRUE(heard.wait());
  EXPECT_TRUE(showsIt);
  EXPECT_EQ(calls, 1);
  subscription.reset();
  ASSERT_TRUE(other->update(always({{"more", true}, {"theirs", std::nullopt}})));
  EXPECT_EQ(content(*other), (SuiteEntries{{"mine", true}, {"more", true}}));
  Signal later;
  const auto last = this->suite_->observe([&] { later.set(); });
  ASSERT_TRUE(other->update(always({{"most", true}})));
  ASSERT_TRUE(later.wait());
  EXPECT_EQ(calls, 1) << "a dropped subscription hears nothing";
}

TYPED_TEST(KeyValueSuiteContract, FollowersGetTheContentBeforeAnUpdateReturnsAndAnothersUnasked) {
  ASSERT_TRUE(this->suite_->update(always({{"kept", true}, {"gone", true}})));
  std::mutex mutex;
  SuiteEntries passed, changed;
  Signal theirs;
  const auto following = this->suite_->follow([&](const SuiteEntries& entries, const SuiteChanges* changes) {
    const std::lock_guard lock(mutex);
    passed = entries;
    if (!changes) changed = entries;
    for (const auto& [key, value] : changes ? *changes : SuiteChanges()) {
      changed.erase(key);
      if (value) changed.emplace(key, *value);
    }
    if (entries.contains("theirs")) theirs.set();
  });
  const auto check = [&](const SuiteEntries& expected) {
    const std::lock_guard lock(mutex);
    EXPECT_EQ(passed, expected);
    EXPECT_EQ(changed, expected) << "by the changes alone";
  };
  check({{"kept", true}, {"gone", true}});
  ASSERT_TRUE(this->suite_->update(always({{"new", true}, {"gone", std::nullopt}})));
  check({{"kept", true}, {"new", true}});
  const auto held = this->suite_->snapshot();
  ASSERT_TRUE(this->suite_->update(always({{"new", false}})));
  check({{"kept", true}, {"new", false}});
  EXPECT_EQ(held->at("new"), PropertyValue(true)) << "a snapshot does not change";
  EXPECT_FALSE(this->suite_->update([](const SuiteEntries&) -> SuiteChanges { throw std::runtime_error("no"); }));
  const auto other = this->world_.later.open("suite", {}).value();
  ASSERT_TRUE(other->update(always({{"theirs", true}})));
  ASSERT_TRUE(theirs.wait()) << "nobody takes a snapshot";
  check({{"kept", true}, {"new", false}, {"theirs", true}});
}

TYPED_TEST(KeyValueSuiteContract, ATurnHasOneHolderUntilItIsDropped) {
  KeyValueStore& store = this->world_.store;
  KeyValueStore& later = this->world_.later;
  auto turn = store.tryLock("upload");
  ASSERT_TRUE(turn);
  EXPECT_FALSE(store.tryLock("upload"));
  EXPECT_FALSE(later.tryLock("upload"));
  EXPECT_TRUE(later.tryLock("other"));
  turn.reset();
  EXPECT_TRUE(later.tryLock("upload"));
  EXPECT_TRUE(store.tryLock("upload")) << "and is free again";
}

TYPED_TEST(KeyValueSuiteContract, SuitesAreOneObjectANameAndIndependent) {
  EXPECT_EQ(this->world_.store.open("suite", {}).value(), this->suite_);
  const auto other = this->world_.store.open("other", {}).value();
  const auto defaults = this->world_.store.standardDefaults();
  ASSERT_TRUE(other && defaults);
  EXPECT_EQ(this->world_.store.standardDefaults(), defaults);
  ASSERT_TRUE(this->suite_->update(always({{"key", true}})));
  EXPECT_TRUE(content(*other).empty());
  EXPECT_TRUE(content(*defaults).empty());
}

TYPED_TEST(KeyValueSuiteContract, ThreadsAndProcessesLoseNoUpdateAndSeeNoHalfOfOne) {
  constexpr int rounds = 60;
  const auto other = this->world_.later.open("suite", {}).value();
  const auto write = [](KeyValueSuite& suite) {
    for (int i = 0; i < rounds; ++i) {
      EXPECT_TRUE(suite.update([](const SuiteEntries& current) {
        const auto found = current.find("a");
        const auto next = found == current.end() ? 1 : std::get<std::int64_t>(found->second) + 1;
        return SuiteChanges{{"a", next}, {"b", next}};
      }));
    }
  };
  std::atomic<bool> over = false;
  std::jthread reader([&] {
    while (!over) {
      const auto seen = this->suite_->snapshot();
      if (seen->empty()) continue;
      EXPECT_EQ(seen->at("a"), seen->at("b"));
    }
  });
  {
    std::jthread one([&] { write(*this->suite_); }), two([&] { write(*this->suite_); }), three([&] { write(*other); });
  }
  over = true;
  EXPECT_EQ(this->suite_->read(0)->entries->at("a"), PropertyValue(std::int64_t{3 * rounds}));
}

TEST(MemoryStoreTest, FaultsStrikeBeforeOrAfterAnUpdateTookEffect) {
  auto next = MemoryFault::none;
  MemoryStore store([&] { return std::exchange(next, MemoryFault::none); });
  const auto suite = store.open("suite", {}).value();
  next = MemoryFault::before;
  EXPECT_FALSE(suite->update(always({{"a", true}})));
  EXPECT_TRUE(suite->snapshot()->empty());
  next = MemoryFault::after;
  EXPECT_FALSE(suite->update(always({{"a", true}})));
  EXPECT_EQ(content(*suite), (SuiteEntries{{"a", true}}));
  EXPECT_TRUE(suite->update(always({{"b", true}})));
}

TEST(MemoryStoreTest, AProcessThatEndedHoldsNoTurnChangesNothingAndHearsNothing) {
  MemoryStore first;
  const auto second = first.another();
  const auto suite = second->open("suite", {}).value();
  const auto held = second->tryLock("upload");
  const auto subscription = suite->observe([] { FAIL() << "it has ended"; });
  second->end();
  EXPECT_TRUE(first.tryLock("upload"));
  EXPECT_FALSE(second->tryLock("upload"));
  EXPECT_FALSE(suite->update(always({{"a", true}})));
  EXPECT_TRUE(first.open("suite", {}).value()->update(always({{"b", true}})));
  auto third = first.another();
  const auto turn = third->tryLock("upload");
  EXPECT_FALSE(first.tryLock("upload"));
  third.reset();
  EXPECT_TRUE(first.tryLock("upload")) << "dropping a store ends its process";
}

}  // namespace quillon
