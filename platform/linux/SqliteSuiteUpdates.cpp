// Updates of a suite, and recovery when the file fails.
#include <algorithm>
#include <exception>
#include <thread>
#include <utility>

#include "platform/linux/BlockedWriteSignals.h"
#include "platform/linux/Folder.h"
#include "platform/linux/SqliteSuite.h"
#include "platform/linux/SuiteReplacement.h"

namespace quillon {

namespace {

constexpr std::chrono::seconds writerWait{2};
constexpr int attemptsToUpdate = 4;

// The effective changes as rows; keys refer into the changes.
using Rows = std::vector<std::pair<std::string_view, std::optional<StoredValue>>>;

std::expected<Rows, std::string> rowsToWrite(const SuiteEntries& current, const SuiteChanges& changes) {
  Rows rows;
  for (const auto& [key, value] : changes) {
    if (key.empty()) return std::unexpected("a key is empty");
    const auto existing = current.find(key);
    if (!value) {
      if (existing != current.end()) rows.emplace_back(key, std::nullopt);
      continue;
    }
    if (existing != current.end() && existing->second == *value) continue;
    auto stored = toStored(*value);
    if (key.size() + stored.text.size() > maximumEntryBytes) return std::unexpected("a value is larger than 1 MiB");
    rows.emplace_back(key, std::move(stored));
  }
  return rows;
}

}  // namespace

// Rolls back unless committed; drops a connection that fails to roll back.
class SqliteSuite::Transaction {
 public:
  explicit Transaction(SqliteSuite& suite) : suite_(suite) {}
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;
  ~Transaction() {
    if (committed_) return;
    if (wrote_) suite_.version_.reset();
    if (!suite_.file_->rollback()) suite_.file_.reset();
  }

  void writing() { wrote_ = true; }
  void committed() { committed_ = true; }

 private:
  SqliteSuite& suite_;
  bool wrote_ = false;
  bool committed_ = false;
};

SqliteSuite::Deadline SqliteSuite::writerDeadline() {
  return std::chrono::steady_clock::now() + writerWait;
}

std::expected<void, std::string> SqliteSuite::update(const Edit& edit) {
  auto done = [&]() -> std::expected<void, std::string> {
    const BlockedWriteSignals held;
    try {
      return updateInTurn(edit);
    } catch (const std::exception& error) {
      return std::unexpected(error.what());
    } catch (...) {
      return std::unexpected("unknown exception");
    }
  }();
  deliver();
  return done;
}

std::expected<void, std::string> SqliteSuite::updateInTurn(const Edit& edit) {
  std::lock_guard turn(writersMutex_);
  std::unique_lock connection(connectionMutex_);
  bool hasReopened = false;
  for (int attempts = 1;; ++attempts) {
    bool isCommitted = false;
    auto done = attempt(connection, writerDeadline(), edit, isCommitted);
    if (done) return {};
    auto& problem = done.error();
    const bool isHopeless = problem.recovery == Recovery::none || problem.recovery == Recovery::wait;
    if (isHopeless || attempts == attemptsToUpdate) return std::unexpected(std::move(problem.text));
    // First try a new connection: the fault may be ours, or repaired by another process.
    if (problem.recovery == Recovery::replace && !std::exchange(hasReopened, true)) {
      problem.recovery = Recovery::reopen;
    }
    const auto recovered = recover(problem);
    if (!recovered) return std::unexpected(recovered.error().text);
    // A commit to a file that was moved away was written again by recover().
    if (isCommitted && *recovered == Recovered::ours) return {};
  }
}

std::expected<void, SqliteSuite::Problem> SqliteSuite::begin(std::unique_lock<std::mutex>& connection,
                                                             Deadline deadline) {
  for (;;) {
    if (!file_) return std::unexpected(Problem{Recovery::reopen, "its connection was lost"});
    auto begun = file_->begin();
    if (begun) return {};
    if (begun.error().recovery != Recovery::wait || std::chrono::steady_clock::now() >= deadline) {
      return std::unexpected(problem(begun.error()));
    }
    // Unlocked while another process writes, so that readers can probe.
    connection.unlock();
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
    connection.lock();
  }
}

std::expected<void, SqliteSuite::Problem> SqliteSuite::attempt(std::unique_lock<std::mutex>& connection,
                                                               Deadline deadline, const Edit& edit, bool& isCommitted) {
  if (auto begun = begin(connection, deadline); !begun) return begun;
  Transaction transaction(*this);
  if (file_->moved()) return std::unexpected(Problem{Recovery::reopen, "it was moved away"});
  if (file_->truncated()) return std::unexpected(Problem{Recovery::reopen, "it was truncated"});
  if (auto done = refresh(); !done) return std::unexpected(problem(done.error()));
  if (!sound_) return std::unexpected(Problem{Recovery::reopen, "entries in it are damaged"});

  const auto& current = *published_;  // stable: publishing requires connectionMutex_
  const auto impossible = [](std::string why) { return std::unexpected(Problem{Recovery::none, std::move(why)}); };
  SuiteUpdate planned = edit(current);
  if (planned.markRecords) {
    const auto unmarked = file_->readUnmarked(maximumJournalRecords);
    if (!unmarked) return std::unexpected(problem(unmarked.error()));
    noteDamaged(unmarked->damaged);
    planned.completeMarks(unmarked->records);
  }
  if (planned.appendAfter) {
    const auto newest = file_->readNewest();
    if (!newest) return std::unexpected(problem(newest.error()));
    planned.completeAppended(*newest);
  }
  const auto rows = rowsToWrite(current, planned.changes);
  if (!rows) return impossible(rows.error());
  const auto tooLong = [](const std::string& text) { return text.size() > maximumJournalTextBytes; };
  if (std::ranges::any_of(planned.appended, tooLong)) return impossible("a journal record is too long");
  const bool writesJournal = planned.clearsJournal || !planned.marks.empty() || !planned.appended.empty();
  if (rows->empty() && !writesJournal) return {};
  SuiteEntries changed;
  std::size_t size = current.size();
  for (const auto& [key, value] : planned.changes) {
    size -= current.count(key);
    if (value) changed.emplace(key, *value);
  }
  if (size + changed.size() > maximumSuiteEntries) return impossible("the store has too many entries");

  transaction.writing();
  for (const auto& [key, stored] : *rows) {
    const auto done = stored ? file_->put(key, *stored) : file_->remove(key);
    if (!done) return std::unexpected(problem(done.error()));
  }
  if (writesJournal) {
    if (auto done = file_->writeJournal(planned); !done) return std::unexpected(problem(done.error()));
  }
  if (auto done = file_->commit(writerDeadline()); !done) return std::unexpected(problem(done.error()));
  transaction.committed();
  isCommitted = true;
  publish(std::move(changed), planned.changes);
  // Moved away by another process since it was checked: the update must go into its replacement.
  if (file_->moved()) return std::unexpected(Problem{Recovery::reopen, "it was moved away"});
  return {};
}

SqliteSuite::Problem SqliteSuite::problem(const SqliteError& error) const {
  const bool isHeld = error.recovery == Recovery::wait;
  return {file_ && file_->moved() ? Recovery::reopen : error.recovery,
          "store " + path_.string() + (isHeld ? ": another process holds it: " : ": ") + error.text};
}

// Opens or creates a healthy file at the path, with the content last known to be committed.
std::expected<SqliteSuite::Recovered, SqliteSuite::Problem> SqliteSuite::recover(const Problem& why) {
  const auto locked = Folder::openLocked(path_.parent_path(), writerDeadline());
  if (!locked) return std::unexpected(Problem{Recovery::none, locked.error()});
  const auto& folder = *locked;
  if (!folder) {
    return std::unexpected(Problem{Recovery::wait, "another process holds folder " + path_.parent_path().string()});
  }
  const bool wasOpen = file_.has_value();
  const bool isReplaced = why.recovery == Recovery::replace && wasOpen && !file_->moved();
  std::vector<JournalRecord> journal;
  if (wasOpen) {
    if (file_->moved()) {
      // Other processes may have committed since the last read.
      if (auto content = file_->read(); content && content->unreadable.empty()) publish(std::move(*content));
    }
    journal = file_->readableJournal();
    file_.reset();
  }

  SuiteEntries entries = isKnown_ ? *published_ : SuiteEntries{};
  auto found = SuiteFile::open(path_, writerDeadline());
  if (found) {
    if (found->content.unreadable.empty() && !isReplaced) {
      // Another process was faster, or a copy was restored. That content counts as it is: adding our keys could restore
      // erased ones.
      useFile(std::move(*found));
      return Recovered::anothers;
    }
    // No process may write to it from now on, nor have written since it was read.
    if (auto begun = found->file.begin(); !begun) return std::unexpected(problem(begun.error()));
    const auto version = found->file.version();
    if (!version) return std::unexpected(problem(version.error()));
    if (*version != found->content.version) {
      return std::unexpected(Problem{Recovery::wait, "another process goes on writing to " + path_.string()});
    }
    entries = found->content.entries;
    journal = found->file.readableJournal();
    publish(std::move(found->content));
  } else {
    const auto& error = found.error();
    if (error.recovery == Recovery::none || error.recovery == Recovery::wait) return std::unexpected(problem(error));
    // An interrupted start of an earlier version may have set a damaged file aside and left none in its place.
    const bool isLost = error.recovery == Recovery::replace || isSuiteFileKeptAside(path_);
    if (!isKnown_ && isLost) entries.insert_or_assign(std::string(lostEntriesKey), true);
  }

  const auto aside = replaceSuiteFile(path_, entries, journal, *folder);
  if (!aside) return std::unexpected(Problem{Recovery::none, why.text + "; " + aside.error()});
  const auto count = std::to_string(entries.size());
  if (!aside->empty()) {
    note("Store " + path_.string() + " was damaged (" + why.text + ") and is kept as " + aside->string() +
         "; a new one was begun with the " + count + " entries known");
  } else if (wasOpen) {
    note("Store " + path_.string() + " had disappeared; it was written again with the " + count + " entries known");
  } else if (entries.contains(lostEntriesKey)) {
    note("Store " + path_.string() + " had disappeared while a damaged one was set aside; a new one was begun");
  }
  auto opened = SuiteFile::open(path_, writerDeadline());
  if (!opened) return std::unexpected(problem(opened.error()));
  useFile(std::move(*opened));
  return found ? Recovered::anothers : Recovered::ours;
}

}  // namespace quillon
