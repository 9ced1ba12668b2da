// A suite of the durable store, in one SQLite file.
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
#include "platform/parts/SuiteFollowers.h"
#include "platform/parts/SuiteObservers.h"

namespace quillon {

class FileWatch;
class WorkLoop;

// Followers and snapshots get the published content. While there are followers or observers, the pool probes the file
// for commits of other processes whenever it changes; snapshot() probes at intervals, unless an update of this process
// holds the connection. Must not be used across a fork. The folder must exist and its path contain no links. A file
// held by another process at the start is loaded once it is released.
class SqliteSuite final : public KeyValueSuite, public std::enable_shared_from_this<SqliteSuite> {
 public:
  // Waits up to `openWait` for another process that holds the file. The error, with path and reason, when the file can
  // be neither opened nor created. Without a loop, observers are not called, and followers get the commits of other
  // processes only with the next snapshot().
  static std::expected<std::shared_ptr<SqliteSuite>, std::string> open(std::filesystem::path file,
                                                                       KeyValueStore::Report report,
                                                                       std::shared_ptr<WorkLoop> loop,
                                                                       std::chrono::milliseconds openWait);

  std::shared_ptr<const SuiteEntries> snapshot() const override;
  std::shared_ptr<void> follow(Follower follower) override;
  std::expected<void, std::string> update(const Edit& edit) override;
  std::expected<JournalPage, std::string> journal(std::int64_t before, std::size_t count) const override;
  std::expected<SuiteReading, std::string> read(std::size_t count) const override;
  std::unique_ptr<SuiteSubscription> observe(std::function<void()> changed) override;

 private:
  using Deadline = SuiteFile::Deadline;
  using Problem = SqliteError;
  using Note = std::pair<KeyValueStore::ReportLevel, std::string>;
  // The content at the path after recovery: this object's, or another process's.
  enum class Recovered { ours, anothers };
  class Transaction;

  SqliteSuite(std::filesystem::path file, KeyValueStore::Report report, std::shared_ptr<WorkLoop> loop);

  static Deadline writerDeadline();
  // False when the file was busy.
  bool probe() const noexcept;
  std::expected<void, std::string> updateInTurn(const Edit& edit);
  void watch();
  void note(std::string message, KeyValueStore::ReportLevel level = KeyValueStore::ReportLevel::error) const;
  // Delivers reports and change notifications without a lock: the receivers are host code.
  void deliver() const noexcept;

  // The members below require connectionMutex_.
  std::expected<void, std::string> ready() const;
  SqliteResult<JournalPage> readOnce(std::size_t count) const;
  void noteDamaged(const std::vector<std::int64_t>& records) const;
  SqliteResult<> refresh() const;
  void useFile(SuiteFile::Opened opened) const;
  void publish(SuiteContent content) const;
  void publish(SuiteEntries entries) const;
  void publish(SuiteEntries changed, const SuiteChanges& changes) const;
  Problem problem(const SqliteError& error) const;
  std::expected<void, Problem> begin(std::unique_lock<std::mutex>& connection, Deadline deadline);
  std::expected<void, Problem> attempt(std::unique_lock<std::mutex>& connection, Deadline deadline, const Edit& edit,
                                       bool& isCommitted);
  std::expected<Recovered, Problem> recover(const Problem& why);
  std::expected<void, std::string> start(std::chrono::milliseconds openWait);
  void startWithoutContent(const std::string& why);

  const std::filesystem::path path_;
  const KeyValueStore::Report report_;
  const std::shared_ptr<WorkLoop> loop_;

  std::mutex writersMutex_;  // serialises updates; locked before connectionMutex_

  mutable std::mutex connectionMutex_;
  mutable std::optional<SuiteFile> file_;          // nullopt after an error that broke the connection
  mutable std::optional<std::int64_t> version_;    // of the published content; nullopt: read again
  mutable bool isKnown_ = false;                   // content was read at least once
  mutable bool isLockedElsewhere_ = false;         // by another process since the start: content unknown
  mutable bool sound_ = true;                      // all rows are readable
  mutable std::set<std::string> unreadableNoted_;  // reported once each
  mutable std::set<std::int64_t> damagedNoted_;    // journal numbers, reported once each

  mutable std::mutex publishedMutex_;  // guards the two members below; published_ changes under both locks only
  mutable std::shared_ptr<SuiteEntries> published_ = std::make_shared<SuiteEntries>();
  mutable SuiteFollowers followers_;
  mutable std::atomic<std::int64_t> nextProbe_{0};  // nanoseconds of the coarse monotonic clock

  std::mutex watchMutex_;  // guards the member below
  std::shared_ptr<FileWatch> watch_;
  const std::shared_ptr<SuiteObservers> observers_ = std::make_shared<SuiteObservers>();
  mutable std::atomic<bool> hasChanged_{false};  // by another process, not yet reported

  mutable std::mutex notesMutex_;
  mutable std::vector<Note> notes_;
};

}  // namespace quillon
