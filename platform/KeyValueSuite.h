// The durable key-value store. One suite is one named, independent set of keys.
#pragma once

#include <chrono>
#include <cstdint>
#include <expected>
#include <functional>
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

// What a key can hold.
using PropertyValue =
    std::variant<bool, std::int64_t, std::string, PropertyDate, std::vector<std::int64_t>, std::vector<std::string>>;

// Lets a map of strings be searched with a string_view without making a string.
struct TransparentStringHash {
  using is_transparent = void;
  std::size_t operator()(std::string_view text) const noexcept { return std::hash<std::string_view>()(text); }
};

// The content of a suite at one moment.
using SuiteEntries = std::unordered_map<std::string, PropertyValue, TransparentStringHash, std::equal_to<>>;

// A snapshot holds true under this key when something that had been written was lost to damage, and what it was can no
// longer be told. It stays until it is removed.
inline constexpr std::string_view lostEntriesKey = "LOST_ENTRIES";

// Keys to write, each with its new value or with nothing to remove it.
using SuiteChanges = std::map<std::string, std::optional<PropertyValue>, std::less<>>;

// Every suite has a journal: records in the order in which they were appended. What a record says never changes; only
// its mark is set, once.
struct JournalRecord {
  std::int64_t number = 0;  // given by the suite, ascending
  std::string text;
  std::string mark;  // empty until it is set

  bool operator==(const JournalRecord&) const = default;
};

// Beyond these the oldest records go, a few hundred at once, in the update that appends the newest.
inline constexpr std::size_t maximumJournalRecords = 10'000;
inline constexpr std::size_t journalRecordsDroppedAtOnce = 200;
// Of one text, and of one mark.
inline constexpr std::size_t maximumJournalTextBytes = 4096;

struct JournalPage {
  std::vector<JournalRecord> records;  // newest first
  std::vector<std::int64_t> damaged;   // numbers of those in between that are not what was written
};

// What one update does: all of it or nothing. A suite's changes alone are an update, too.
struct SuiteUpdate {
  SuiteUpdate() = default;
  SuiteUpdate(SuiteChanges keys) : changes(std::move(keys)) {}  // NOLINT(google-explicit-constructor): see above

  SuiteChanges changes;
  bool clearsJournal = false;  // before anything is appended
  // Receives the records without a mark, newest first, of the same moment as the entries that the edit saw, and adds to
  // the update: marks of records, by number, and further changes. May be called more than once; must not call back into
  // the suite.
  struct Marking {
    std::map<std::int64_t, std::string> marks = {};
    SuiteChanges changes = {};
  };
  std::function<Marking(const std::vector<JournalRecord>& unmarked)> markRecords = {};
  std::map<std::int64_t, std::string> marks = {};
  std::vector<std::string> appended = {};  // texts, in this order

  // For suites: asks `markRecords` and takes what it answers into the update.
  void complete(const std::vector<JournalRecord>& unmarked) {
    if (!markRecords) return;
    Marking marking = markRecords(unmarked);
    marks.merge(marking.marks);
    for (auto& [key, value] : marking.changes) changes.insert_or_assign(key, std::move(value));
  }
};

// One consistent look at the newest commit of any process.
struct SuiteReading {
  std::shared_ptr<const SuiteEntries> entries;
  std::vector<JournalRecord> unmarked;  // records without a mark, newest first; damaged ones are left out
};

// Thread-safe. No call begins once it is dropped, and dropping waits for one that is under way on another thread: so it
// must not be dropped while holding a lock that the call takes.
class SuiteSubscription {
 public:
  virtual ~SuiteSubscription() = default;
};

// Thread-safe. Never throws.
class KeyValueSuite {
 public:
  virtual ~KeyValueSuite() = default;

  // The committed content. Does not wait for a writer. A change made through this object is visible at once, one made
  // by another process at the latest 100 ms after it was committed.
  virtual std::shared_ptr<const SuiteEntries> snapshot() const = 0;

  // Receives the newest committed content and returns what to do, with every other writer of the suite, in this process
  // or another, held off. Called again, with the content found then, when the file had to be replaced or reopened in
  // between: only what the last call returns is done. Must not call back into the suite.
  using Edit = std::function<SuiteUpdate(const SuiteEntries& current)>;

  // Does all of the edit's update or none of it. On success they are durable when this returns; on failure (disk
  // full, read-only, damaged, another writer that does not let go for two seconds) the suite is as it was and the
  // error says why.
  virtual std::expected<void, std::string> update(const Edit& edit) = 0;

  // The records with a number below that one, at most so many; fewer, damaged ones included, are the last there are.
  // May wait for the disk and for a commit of this process.
  virtual std::expected<JournalPage, std::string> journal(std::int64_t before, std::size_t count) const = 0;

  // The entries and the unmarked records of the same moment, as new as there are. May wait for the disk and for a
  // commit of any process, at most two seconds; the error says why nothing can be read.
  virtual std::expected<SuiteReading, std::string> read() const = 0;

  // Calls `changed` within a second after the content has changed other than by an update of this object: mostly
  // because another process has committed. By then snapshot() shows it. Several commits may be one call, and a call may
  // find nothing new. Calls come on any thread, one at a time, never within a call of this suite's that the subscriber
  // makes; they must only hand work on. What `changed` throws is contained. Never null.
  [[nodiscard]] virtual std::unique_ptr<SuiteSubscription> observe(std::function<void()> changed) = 0;
};

// Held by at most one owner among all processes of the application. Thread-safe; dropping it passes the turn on.
class StoreTurn {
 public:
  virtual ~StoreTurn() = default;
};

// Thread-safe. Never throws.
class KeyValueStore {
 public:
  virtual ~KeyValueStore() = default;

  // `information` is what an operator may want to know though nothing is wrong.
  enum class ReportLevel { information, error };

  // Told of what happened to a suite or a turn, above all of damage that was noticed and survived, in words for the
  // log. Called from any thread, possibly while a call of the suite is under way, so it must not call the suite itself.
  using Report = std::function<void(ReportLevel level, std::string message)>;

  // Waits up to ten seconds for another process that holds the suite, and then goes on without what is stored: it is
  // reported, snapshots hold lostEntriesKey and nothing else, and updates fail, until the other lets go. The suite is
  // then taken up by itself within a few seconds, and those who observe are told.
  //
  // The suite of that name, created when it does not exist yet; the same object for every call with the same name (the
  // first report given is kept). Never null; the error, path and reason, when it can be neither opened nor created.
  virtual std::expected<std::shared_ptr<KeyValueSuite>, std::string> open(std::string_view name, Report report) = 0;

  // The turn of that name; null while somebody has it, in this process or another of the application. Never blocks. The
  // turn of a process that dies is free. Where turns cannot be kept apart it is granted all the same, and the report of
  // the first suite opened says why, once: work that nobody does is worse than work that two do.
  [[nodiscard]] virtual std::unique_ptr<StoreTurn> tryTurn(std::string_view name) = 0;

  // The process's standard defaults, which the host owns. Never null; empty where the platform has none.
  virtual std::shared_ptr<KeyValueSuite> standardDefaults() = 0;
};

}  // namespace quillon
