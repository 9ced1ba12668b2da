// The table of consents under writers and readers, on the real store.
#include "core/Persistance/UserDefaults/ConsentTable.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <random>
#include <thread>

#include "core/Persistance/UserDefaults/StoreKeys.h"
#include "core/Persistance/UserDefaults/StoredValues.h"
#include "platform/linux/SqliteStore.h"
#include "platform/linux/WorkPool.h"
#include "tests/platform/ChildProcess.h"
#include "tests/support/TemporaryFolder.h"

namespace quillon::test {
namespace {

constexpr int digits = 14;
constexpr std::int64_t firstOther = 1000;  // purposes that are only added, so that the table grows meanwhile

// One decision on many purposes and a permission: a number, which the next decision increases.
void writeNext(StoreTransaction& transaction) {
  int number = 1;
  for (std::int64_t id = 0; id < digits; ++id) {
    if (transaction.consent(PurposeKey(id)) == ConsentStatus::granted) number += 1 << id;
  }
  for (std::int64_t id = 0; id < digits; ++id) {
    const bool isOne = (number >> id & 1) != 0;
    transaction.decide(id, isOne ? ConsentStatus::granted : ConsentStatus::declined,
                       isOne ? DecisionCause::user : DecisionCause::byDefault);
  }
  transaction.set(key::lostEntries, number % 2 != 0);
  transaction.set(PurposeKey(firstOther + number / 8), std::string(rawValue(ConsentStatus::granted)));
  transaction.set("permission " + std::to_string(number % 7), std::string(rawValue(ConsentStatus::granted)));
}

// Zero before the first decision. Fails on half of a decision.
int readNumber(const ConsentTable& table) {
  static constexpr auto ids = [] {
    std::array<std::int64_t, digits> all{};
    for (int id = 0; id < digits; ++id) all[static_cast<std::size_t>(id)] = id;
    return all;
  }();
  const auto purposes = table.purposes(ids);
  int number = 0;
  for (std::size_t id = 0; id < purposes.size(); ++id) {
    const PurposeState& purpose = purposes[id];
    EXPECT_EQ(purpose.decision().has_value(), purposes.front().decision().has_value());
    if (purpose.decision() == ConsentStatus::granted) number += 1 << id;
    EXPECT_EQ(purpose.isAnswered(), purpose.decision() == ConsentStatus::granted);
  }
  EXPECT_EQ(purposes.front().byDefault(), number % 2 != 0 ? ConsentStatus::declined : ConsentStatus::granted);
  return number;
}

// Reads until it is over, and sees no earlier decision after a later one, nor after one that has returned.
void watch(const ConsentTable& table, const std::atomic<bool>& over, const std::atomic<int>& returned = 0) {
  for (int last = 0; !over;) {
    const int told = returned;
    const int number = readNumber(table);
    ASSERT_GE(number, std::max(last, told));
    last = number;
  }
}

// A process with its own connection to the store.
struct Process {
  explicit Process(const std::filesystem::path& folder) : store(folder, std::make_shared<WorkPool>("work", 2)) {}

  bool decide() {
    const auto done = suite->update([](const SuiteEntries& current) {
      StoreTransaction transaction(current);
      writeNext(transaction);
      return transaction.take();
    });
    return done.has_value();
  }

  ConsentTable table;
  SqliteStore store;
  std::shared_ptr<KeyValueSuite> suite = store.open("suite", {}).value();
  std::shared_ptr<void> following = suite->follow(
      [this](const SuiteEntries& entries, const SuiteChanges* changes) { table.updateStored(entries, changes); });
};

TEST(ConsentTableTest, ReadersSeeNoHalfDecisionAndNoEarlierOneWhileTwoProcessesWrite) {
  constexpr int rounds = 100;
  TemporaryFolder folder(TemporaryFolder::fastParent());
  Process one(folder.path() / "app"), two(folder.path() / "app");
  std::atomic<int> returned = 0, none = 0;
  std::atomic<bool> over = false;
  std::vector<std::jthread> readers;
  for (Process* process : {&one, &one, &two}) {
    // Another's decisions take up to 100 ms.
    readers.emplace_back([&, process] { watch(process->table, over, process == &one ? returned : none); });
  }
  {
    std::jthread other([&] {
      for (int i = 0; i < rounds; ++i) ASSERT_TRUE(two.decide());
    });
    for (int i = 0; i < rounds; ++i) {
      ASSERT_TRUE(one.decide());
      returned = readNumber(one.table);
    }
  }
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
  for (const Process* process : {&one, &two}) {
    while (readNumber(process->table) < 2 * rounds) ASSERT_LT(std::chrono::steady_clock::now(), deadline);
    EXPECT_EQ(process->table.purpose(firstOther).decision(), ConsentStatus::granted);
    EXPECT_EQ(process->table.permission("permission 3").stored, ConsentStatus::granted);
  }
  over = true;
}

TEST(ConsentTableTest, ReadersSeeNoHalfDecisionHoweverFastTheyAreMade) {
  constexpr int rounds = 3000;
  ConsentTable table;
  std::vector<std::jthread> readers;
  std::atomic<bool> over = false;
  for (int i = 0; i < 2; ++i) readers.emplace_back([&] { watch(table, over); });
  SuiteEntries entries;
  for (int i = 0; i < rounds; ++i) {
    StoreTransaction transaction(entries);
    writeNext(transaction);
    const SuiteChanges changes = transaction.take().changes;
    for (const auto& [key, value] : changes) entries.insert_or_assign(key, *value);
    table.updateStored(entries, i % 20 == 0 ? nullptr : &changes);
  }
  over = true;
  readers.clear();
  EXPECT_EQ(readNumber(table), rounds);
}

// Every query against the stored values, the configuration in force and the signal, after random changes that
// overwrite, remove, damage and clear.
TEST(ConsentTableTest, ShowsWhatIsStoredAndInForce) {
  const std::vector<std::string> names{"0",
                                       "1",
                                       "-1",
                                       "007",
                                       "-0",
                                       "9223372036854775807",
                                       "",
                                       "-9223372036854775808",
                                       "SUBJECT_ID",
                                       "a permission",
                                       std::string(257, 'x')};
  const std::vector<std::int64_t> ids{
      0, 1, -1, 7, 2, std::numeric_limits<std::int64_t>::max(), std::numeric_limits<std::int64_t>::min()};
  ConsentTable table;
  SuiteEntries entries;
  std::optional<ConsentTable::Terms> terms;
  std::optional<ConsentTable::Signal> signal;
  std::mt19937 random(1);
  const auto pick = [&](std::size_t count) { return random() % count; };
  const auto someIds = [&] {
    std::vector<std::int64_t> some;
    for (std::size_t i = pick(8); i > 0; --i) some.push_back(ids[pick(ids.size())]);
    return some;
  };
  const auto sorted = [](std::vector<std::int64_t> list) {
    std::ranges::sort(list);
    return list;
  };
  const auto has = [](const auto& list, const auto& element) { return std::ranges::find(list, element) != list.end(); };
  for (int round = 0; round < 3000; ++round) {
    SuiteChanges changes;
    for (std::size_t i = pick(4); i > 0; --i) {
      const std::string name = pick(4) == 0 ? std::to_string(100 + pick(500)) : names[pick(names.size())];
      const std::optional<PropertyValue> values[] = {std::nullopt, "granted", "declined", "withdrawn", "no", true};
      changes.insert_or_assign(name, values[pick(std::size(values))]);
    }
    if (pick(4) == 0) changes.insert_or_assign(std::string(key::answeredPurposesList), sorted(someIds()));
    if (pick(4) == 0) changes.insert_or_assign(std::string(key::trackingPurposesList), sorted(someIds()));
    if (pick(4) == 0) changes.insert_or_assign(std::string(key::lostEntries), pick(2) == 0);
    const auto* const type = pick(2) == 0 ? "opt-in" : "opt-out";
    if (pick(4) == 0) changes.insert_or_assign(std::string(key::currentComplianceType), type);
    if (pick(50) == 0) {
      for (const auto& [key, value] : entries) changes.try_emplace(key, std::nullopt);
    }
    for (const auto& [key, value] : changes) {
      if (value) entries.insert_or_assign(key, *value);
      if (!value) entries.erase(key);
    }
    table.updateStored(entries, pick(10) == 0 ? nullptr : &changes);
    if (pick(4) == 0) {
      terms.reset();
      if (pick(4) > 0) terms = {someIds(), someIds(), {names[pick(names.size())], "another permission"}};
      table.updateTerms(terms);
    }
    if (pick(4) == 0) {
      signal.reset();
      if (pick(4) > 0) signal = {pick(2) == 0, pick(4) > 0 ? std::optional(someIds()) : std::nullopt};
      table.updateSignal(signal);
    }

    const StoredValues stored(entries);
    const bool wereEntriesLost = stored.boolean(key::lostEntries);  // what was lost may have been a refusal
    std::vector<std::int64_t> asked = ids;
    for (int i = 0; i < 20; ++i) asked.push_back(100 + static_cast<std::int64_t>(pick(500)));
    for (const auto id : asked) {
      const PurposeState purpose = table.purpose(id);
      ASSERT_EQ(purpose.decision(), stored.consent(PurposeKey(id))) << id;
      ASSERT_EQ(purpose.byDefault(), stored.complianceDefault());
      ASSERT_EQ(purpose.isAnswered(), stored.isAnswered(id)) << id;
      ASSERT_EQ(purpose.isBoundToTracking(), stored.isBoundToTracking(id) || (terms && has(terms->boundToTracking, id)))
          << id;
      ASSERT_EQ(purpose.isAllowedUndecided(), terms && has(terms->allowedUndecided, id) && !wereEntriesLost) << id;
      ASSERT_EQ(purpose.isCoveredBySignal(), signal && (!signal->covered || has(*signal->covered, id))) << id;
      ASSERT_EQ(purpose.isSignalGiven(), signal && signal->isGiven);
    }
    for (const auto& name : names) {
      const PermissionState permission = table.permission(name);
      ASSERT_EQ(permission.stored, key::isReserved(name) ? std::nullopt : stored.consent(name)) << name;
      ASSERT_EQ(permission.isListed, terms ? std::optional(has(terms->permissions, name)) : std::nullopt) << name;
    }
  }
  table.close();
  table.updateTerms(ConsentTable::Terms{ids, {}, {}});
  for (const auto id : ids) EXPECT_FALSE(table.purpose(id).isAllowedUndecided()) << "applied while the SDK closes";
}

TEST(ConsentTableTest, AForkedChildReadsWhateverItsParentWasWriting) {
  ConsentTable table;
  std::atomic<bool> over = false;
  std::jthread writer([&] {
    for (bool granted = false; !over; granted = !granted) {
      table.updateStored({{"1", granted ? "granted" : "declined"}, {"2", granted ? "granted" : "declined"}}, nullptr);
    }
  });
  while (!table.purpose(1).decision()) std::this_thread::yield();
  for (int i = 0; i < 20; ++i) {
    ChildProcess child([&](const auto& say) {
      const auto purposes = table.purposes(std::array<std::int64_t, 2>{1, 2});
      say(purposes[0].decision() && purposes[0].decision() == purposes[1].decision() ? "whole" : "half");
    });
    EXPECT_EQ(child.finish(), "whole");
  }
  over = true;
}

}  // namespace
}  // namespace quillon::test
