// One suite of the durable store, kept in one SQLite file.
#pragma once

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "platform/KeyValueSuite.h"
#include "platform/linux/SuiteFile.h"
#include "platform/parts/SuiteObservers.h"

namespace quillon {

class FileWatch;
class WorkLoop;

// Readers take the published snapshot; at intervals one of them asks the file whether another process has committed,
// unless an update of this process has the connection just then. While somebody observes, the pool asks too, whenever
// the file changes. Must not be used across a fork. The folder must exist
// and its path be free of links. A file that another process does not let go of at the start is taken up once it does.
class SqliteSuite final : public KeyValueSuite, public std::enable_shared_from_this<SqliteSuite> {
 public:
  // Waits that long for another process that holds the file. The error, path and reason, when the file can be neither
  // opened nor made. Without a loop nobody is told of changes.
  static std::expected<std::shared_ptr<SqliteSuite>, std::string> open(std::filesystem::path file,
                                                                       KeyValueStore::Report report,
                                                                       std::shared_ptr<WorkLoop> loop,
                                                                       std::chrono::milliseconds openWait);

  std::shared_ptr<const SuiteEntries> snapshot() const override;
  std::expected<void, std::string> update(const Edit& edit) override;
  std::expected<JournalPage, std::string> journal(std::int64_t before, std::size_t count) const override;
  std::expected<SuiteReading, std::string> read() const override;
  std::unique_ptr<SuiteSubscription> observe(std::function<void()> changed) override;

 private:
  using Deadline = SuiteFile::Deadline;
  using Problem = SqliteError;
  using Note = std::pair<KeyValueStore::ReportLevel, std::string>;
  // Whose content is at the path now: what this object knew, or what stood there.
  enum class Recovered { ours, anothers };
  class Transaction;

  SqliteSuite(std::filesystem::path file, KeyValueStore::Report report, std::shared_ptr<WorkLoop> loop);

  static Deadline writerDeadline();
  // False when somebody else was at the file just then.
  bool probe() const noexcept;
  std::expected<void, std::string> updateInTurn(const Edit& edit);
  void watch();
  void note(std::string message, KeyValueStore::ReportLevel level = KeyValueStore::ReportLevel::error) const;
  // Tells of damage, and of changes, without a lock: the receivers are the host's.
  void deliver() const noexcept;

  // The rest with connectionMutex_ held.
  std::expected<void, std::string> ready() const;
  SqliteResult<JournalPage> readOnce() const;
  void noteDamaged(const std::vector<std::int64_t>& records) const;
  SqliteResult<> refresh() const;
  void useFile(SuiteFile::Opened opened) const;
  void publish(SuiteContent content) const;
  void publish(std::shared_ptr<const SuiteEntries> entries) const;
  Problem problem(const SqliteError& error) const;
  std::expected<void, Problem> begin(std::unique_lock<std::mutex>& connection, Deadline deadline);
  std::expected<void, Problem> attempt(std::unique_lock<std::mutex>& connection, Deadline deadline, const Edit& edit,
                                       bool& isCommitted);
  std::expected<Recovered, Problem> recover(const Problem& why);
  std::expected<void, std::string> start(std::chrono::milliseconds openWait);
  void startHeld(const std::string& why);

  const std::filesystem::path path_;
  const KeyValueStore::Report report_;
  const std::shared_ptr<WorkLoop> loop_;

  std::mutex writersMutex_;  // one update at a time; taken before connectionMutex_

  mutable std::mutex connectionMutex_;
  mutable std::optional<SuiteFile> file_;          // nothing after an error that spoilt the connection
  mutable std::optional<std::int64_t> version_;    // of the published content; nothing: read it again
  mutable bool isKnown_ = false;                   // content has been read at some time
  mutable bool isHeld_ = false;                    // by another process ever since the start: nothing is known
  mutable bool sound_ = true;                      // no row of the file is unreadable
  mutable std::set<std::string> unreadableNoted_;  // each of them is reported once
  mutable std::set<std::int64_t> damagedNoted_;    // of the journal, likewise

  mutable std::mutex publishedMutex_;  // held for the copy of one pointer
  mutable std::shared_ptr<const SuiteEntries> published_ = std::make_shared<SuiteEntries>();
  mutable std::atomic<std::int64_t> nextProbe_{0};  // nanoseconds of the coarse monotonic clock

  std::mutex watchMutex_;  // guards the two below
  std::shared_ptr<FileWatch> watch_;
  bool isWatchFaultNoted_ = false;
  const std::shared_ptr<SuiteObservers> observers_ = std::make_shared<SuiteObservers>();
  mutable std::atomic<bool> hasChanged_{false};  // other than by an update of ours, and nobody was told yet

  mutable std::mutex notesMutex_;
  mutable std::vector<Note> notes_;
};

}  // namespace quillon
