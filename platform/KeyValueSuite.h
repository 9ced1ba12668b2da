// The durable key-value store. A suite is a named, independent set of keys.
#pragma once

#include <chrono>
#include <cstdint>
#include <expected>
#include <functional>
#include <iterator>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <variant>
#include <vector>

namespace quillon {

using PropertyDate = std::chrono::sys_time<std::chrono::milliseconds>;

// The value of a key.
using PropertyValue =
    std::variant<bool, std::int64_t, std::string, PropertyDate, std::vector<std::int64_t>, std::vector<std::string>>;

// Allows look-up by string_view without creating a string.
struct TransparentStringHash {
  using is_transparent = void;
  std::size_t operator()(std::string_view text) const noexcept { return std::hash<std::string_view>()(text); }
};

// A suite's content.
using SuiteEntries = std::unordered_map<std::string, PropertyValue, TransparentStringHash, std::equal_to<>>;

// Present and true in a snapshot when stored entries were lost to damage and cannot be identified. Stays until removed.
inline constexpr std::string_view lostEntriesKey = "LOST_ENTRIES";

// Changed keys, each with its new value, or nullopt to remove it.
using SuiteChanges = std::map<std::string, std::optional<PropertyValue>, std::less<>>;

// Every suite has a journal, an append-only list of records. A record's text is immutable; its mark is set once.
struct JournalRecord {
  std::int64_t number = 0;  // assigned by the suite, ascending
  std::string text;
  std::string mark;  // empty until set

  bool operator==(const JournalRecord&) const = default;
};

// Above this count the update that appends drops the oldest records, several at once.
inline constexpr std::size_t maximumJournalRecords = 10'000;
inline constexpr std::size_t journalRecordsDroppedAtOnce = 200;
// Limit of a text and of a mark.
inline constexpr std::size_t maximumJournalTextBytes = 4096;

struct JournalPage {
  std::vector<JournalRecord> records;  // newest first
  std::vector<std::int64_t> damaged;   // numbers of damaged records in this range
};

// An atomic update. Converts from the changes alone.
struct SuiteUpdate {
  SuiteUpdate() = default;
  SuiteUpdate(SuiteChanges keys) : changes(std::move(keys)) {}  // NOLINT(google-explicit-constructor): see above

  SuiteChanges changes;
  bool clearsJournal = false;  // before anything is appended
  // Receives the unmarked records, newest first, consistent with the entries passed to the edit, and returns
  // marks by record number and further changes. May be called more than once; must not call the suite.
  struct Marking {
    std::map<std::int64_t, std::string> marks = {};
    SuiteChanges changes = {};
  };
  std::function<Marking(const std::vector<JournalRecord>& unmarked)> markRecords = {};
  std::map<std::int64_t, std::string> marks = {};
  std::vector<std::string> appended = {};  // texts, in this order
  // Receives the newest record before the update, if any, as a page of one, and returns texts that follow `appended`
  // and further changes. Same rules as for `markRecords`.
  struct Appending {
    std::vector<std::string> texts = {};
    SuiteChanges changes = {};
  };
  std::function<Appending(const JournalPage& newest)> appendAfter = {};

  // For suite implementations: call `markRecords` and `appendAfter`, where given, and merge the results.
  void completeMarks(const std::vector<JournalRecord>& unmarked) {
    Marking marking = markRecords(unmarked);
    marks.merge(marking.marks);
    merge(std::move(marking.changes));
  }
  void completeAppended(const JournalPage& newest) {
    Appending appending = appendAfter(newest);
    appended.insert(appended.end(), std::make_move_iterator(appending.texts.begin()),
                    std::make_move_iterator(appending.texts.end()));
    merge(std::move(appending.changes));
  }

 private:
  void merge(SuiteChanges further) {
    for (auto& [key, value] : further) changes.insert_or_assign(key, std::move(value));
  }
};

// A consistent read of the newest commit of any process.
struct SuiteReading {
  std::shared_ptr<const SuiteEntries> entries;
  std::vector<JournalRecord> unmarked;  // as many as requested, newest first, without damaged ones
};

// Thread-safe. After destruction no call begins; destruction waits for a call running on another thread, so do not
// destroy it while holding a lock that the call takes.
class SuiteSubscription {
 public:
  virtual ~SuiteSubscription() = default;
};

// Thread-safe. Never throws.
class KeyValueSuite {
 public:
  virtual ~KeyValueSuite() = default;

  // The committed content. Does not wait for writers. Changes made through this object are visible at once, those of
  // other processes within 100 ms of their commit.
  virtual std::shared_ptr<const SuiteEntries> snapshot() const = 0;

  // Calls the follower with the content now and after every change, no later than a snapshot would show it. Calls are
  // serialised, in commit order, with the suite locked, on the thread of the update or any other: the follower must not
  // block, throw or call the suite. `changes` holds all keys that may differ from the previous call; null: any may.
  // Dropping the handle ends the calls; one may still be running then.
  using Follower = std::function<void(const SuiteEntries& entries, const SuiteChanges* changes)>;
  [[nodiscard]] virtual std::shared_ptr<void> follow(Follower follower) = 0;

  // Receives the newest committed content and returns the update, with all other writers of the suite, in any process,
  // locked out. Called again with the new content if the file had to be replaced or reopened; only the last result is
  // applied. Must not call the suite.
  using Edit = std::function<SuiteUpdate(const SuiteEntries& current)>;

  // Applies the edit's update atomically. Durable on return. On failure (disk full, read-only, damaged, a writer that
  // holds the lock for two seconds) the suite is unchanged, and the error gives the reason.
  virtual std::expected<void, std::string> update(const Edit& edit) = 0;

  // At most `count` records numbered below `before`; a shorter page, damaged records included, is the last. May wait
  // for the disk and for a commit of this process.
  virtual std::expected<JournalPage, std::string> journal(std::int64_t before, std::size_t count) const = 0;

  // A consistent read of the newest entries and the newest `count` unmarked records. May wait up to two seconds for the
  // disk and for a commit of any process; the error gives the reason.
  virtual std::expected<SuiteReading, std::string> read(std::size_t count) const = 0;

  // Calls `changed` within a second after the content was changed other than through this object, usually by another
  // process. snapshot() then shows the change. Several commits may be merged into one call, and a call may find nothing
  // new. Calls come on any thread, one at a time, never inside a call of this suite by the subscriber; they must only
  // post work. Exceptions are contained. Never null.
  [[nodiscard]] virtual std::unique_ptr<SuiteSubscription> observe(std::function<void()> changed) = 0;
};

// A lock held by at most one owner among the application's processes. Thread-safe; destruction releases it.
class StoreLock {
 public:
  virtual ~StoreLock() = default;
};

// Thread-safe. Never throws.
class KeyValueStore {
 public:
  virtual ~KeyValueStore() = default;

  // `information` is no error.
  enum class ReportLevel { information, error };

  // Receives reports about a suite or turn, such as damage that was handled, as texts for the log. Called from any
  // thread, possibly during a call of the suite, so it must not call the suite.
  using Report = std::function<void(ReportLevel level, std::string message)>;

  // Opens the suite, creating it if necessary; the same object for every call with the same name (the first report is
  // kept). Never null; the error, with path and reason, when it can be neither opened nor created.
  //
  // Waits up to ten seconds for another process that holds the suite. After that it reports so and continues without
  // the stored content: snapshots contain only lostEntriesKey and updates fail until the other process releases the
  // suite. It is then loaded automatically within a few seconds, and observers are called.
  virtual std::expected<std::shared_ptr<KeyValueSuite>, std::string> open(std::string_view name, Report report) = 0;

  // Tries to acquire the named turn; null while another owner has it, in any process of the application. Never blocks.
  // A process that dies releases its turn. Where locking is unavailable the turn is always granted, since duplicate
  // work is better than none; the first opened suite's report gives the reason once.
  [[nodiscard]] virtual std::unique_ptr<StoreLock> tryLock(std::string_view name) = 0;

  // The process's standard defaults, owned by the host. Never null; empty where the platform has none.
  virtual std::shared_ptr<KeyValueSuite> standardDefaults() = 0;
};

}  // namespace quillon
