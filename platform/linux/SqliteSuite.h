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
#include <vector>

#include "platform/KeyValueSuite.h"
#include "platform/linux/SuiteFile.h"

namespace quillon {

// Readers take the published snapshot; at intervals one of them asks the file whether another process has committed,
// unless an update of this process has the connection just then. Must not be used across a fork. The folder must exist
// and its path be free of links.
class SqliteSuite final : public KeyValueSuite {
 public:
  // Null when the file can be neither opened nor made.
  static std::shared_ptr<SqliteSuite> open(std::filesystem::path file, KeyValueStore::Report report);

  std::shared_ptr<const SuiteEntries> snapshot() const override;
  std::expected<void, std::string> update(const Edit& edit) override;
  std::expected<JournalPage, std::string> journal(std::int64_t before, std::size_t count) const override;

 private:
  using Deadline = SuiteFile::Deadline;
  struct Problem {
    std::string text;
    // Mending the file and trying again can help.
    bool mendable = false;
    // The file opens and reads well, and yet it cannot be kept.
    bool beginsAnew = false;
  };
  class Transaction;

  SqliteSuite(std::filesystem::path file, KeyValueStore::Report report);

  void probe() const;
  std::expected<void, std::string> updateInTurn(const Edit& edit);
  void note(std::string message) const;
  // Without a lock: the receiver is the host's.
  void deliverNotes() const noexcept;

  // The rest with connectionMutex_ held.
  SqliteResult<> refresh() const;
  void adopt(SuiteFile::Opened opened) const;
  void publish(SuiteContent content) const;
  void publish(std::shared_ptr<const SuiteEntries> entries) const;
  Problem problem(const SqliteError& error) const;
  std::expected<void, Problem> begin(std::unique_lock<std::mutex>& connection, Deadline deadline);
  std::expected<void, Problem> attempt(std::unique_lock<std::mutex>& connection, Deadline deadline, const Edit& edit,
                                       std::optional<SuiteUpdate>& planned);
  std::expected<void, std::string> mend(const Problem& why);

  const std::filesystem::path path_;
  const KeyValueStore::Report report_;

  std::mutex writersMutex_;  // one update at a time; taken before connectionMutex_

  mutable std::mutex connectionMutex_;
  mutable std::optional<SuiteFile> file_;          // nothing after an error that spoilt the connection
  mutable std::optional<std::int64_t> version_;    // of the published content; nothing: read it again
  mutable bool known_ = false;                     // content has been read at some time
  mutable bool sound_ = true;                      // no row of the file is unreadable
  mutable std::set<std::string> unreadableNoted_;  // each of them is reported once
  mutable std::set<std::int64_t> damagedNoted_;    // of the journal, likewise

  mutable std::mutex publishedMutex_;  // held for the copy of one pointer
  mutable std::shared_ptr<const SuiteEntries> published_ = std::make_shared<SuiteEntries>();
  mutable std::atomic<std::int64_t> nextProbe_{0};  // nanoseconds of the coarse monotonic clock

  mutable std::mutex notesMutex_;
  mutable std::vector<std::string> notes_;
};

}  // namespace quillon
