#include "platform/linux/SqliteSuite.h"

#include <algorithm>
#include <ctime>
#include <exception>
#include <thread>
#include <utility>

#include "platform/linux/Folder.h"
#include "platform/linux/HeldWriteSignals.h"
#include "platform/parts/Contained.h"

namespace quillon {

namespace {

constexpr std::chrono::seconds patience{2};
constexpr int maximumAttempts = 3;

// Somewhat less than the 100 ms promised, for this clock lags by up to a tick (10 ms at most).
constexpr std::int64_t probeIntervalNanoseconds = 90'000'000;

std::int64_t coarseNanoseconds() {
  std::timespec now{};
  ::clock_gettime(CLOCK_MONOTONIC_COARSE, &now);
  return std::int64_t{now.tv_sec} * 1'000'000'000 + now.tv_nsec;
}

SuiteFile::Deadline afterPatience() {
  return std::chrono::steady_clock::now() + patience;
}

SuiteEntries applied(SuiteEntries entries, const SuiteChanges& changes) {
  for (const auto& [key, value] : changes) {
    if (value) {
      entries.insert_or_assign(key, *value);
    } else {
      entries.erase(key);
    }
  }
  return entries;
}

// What the changes really change, as rows; the keys belong to the changes.
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

// Rolls back unless committed; a connection that cannot even do that is given up.
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

SqliteSuite::SqliteSuite(std::filesystem::path file, KeyValueStore::Report report, std::shared_ptr<WorkLoop> loop)
    : path_(std::move(file)), report_(std::move(report)), loop_(std::move(loop)) {}

std::expected<std::shared_ptr<SqliteSuite>, std::string> SqliteSuite::open(std::filesystem::path file,
                                                                           KeyValueStore::Report report,
                                                                           std::shared_ptr<WorkLoop> loop) {
  std::shared_ptr<SqliteSuite> suite(new SqliteSuite(std::move(file), std::move(report), std::move(loop)));
  std::expected<void, std::string> ready;
  {
    const HeldWriteSignals held;
    std::lock_guard connection(suite->connectionMutex_);
    const auto deadline = afterPatience();
    auto opened = SuiteFile::open(suite->path_, deadline);
    // The application depends on it, so an error that passes is worth another look.
    for (int attempts = 1; !opened && opened.error().fault == SuiteFile::Fault::unavailable; ++attempts) {
      if (attempts == maximumAttempts) break;
      opened = SuiteFile::open(suite->path_, deadline);
    }
    if (opened) {
      suite->adopt(std::move(*opened));
    } else if (opened.error().fault == SuiteFile::Fault::unavailable) {
      ready = std::unexpected(opened.error().text);
    } else {
      ready = suite->mend({opened.error().text});
    }
  }
  suite->deliver();
  if (!ready) return std::unexpected("Store " + suite->path_.string() + " cannot be opened: " + ready.error());
  return suite;
}

std::shared_ptr<const SuiteEntries> SqliteSuite::snapshot() const {
  if (coarseNanoseconds() >= nextProbe_.load(std::memory_order_relaxed)) probe();
  std::lock_guard lock(publishedMutex_);
  return published_;
}

bool SqliteSuite::probe() const noexcept {
  try {
    std::unique_lock connection(connectionMutex_, std::try_to_lock);
    if (!connection) return false;
    if (!file_ || file_->moved()) {
      // Another process has set the file aside and begun a new one, or somebody has put back an older one. When nothing
      // usable stands there, what we know stays valid until the next update mends the file.
      if (auto opened = SuiteFile::open(path_, Deadline::min())) adopt(std::move(*opened));
    } else if (const auto done = refresh(); !done) {
      if (done.error().busy()) return false;  // a commit is under way: the next reader asks again
      if (version_) note("Store " + path_.string() + " cannot be read any more: " + done.error().text);
      version_.reset();
    }
    nextProbe_.store(coarseNanoseconds() + probeIntervalNanoseconds, std::memory_order_relaxed);
  } catch (...) {
    return false;  // out of memory: the snapshot stays, and the next reader tries again
  }
  deliver();
  return true;
}

std::expected<void, std::string> SqliteSuite::update(const Edit& edit) {
  auto done = [&]() -> std::expected<void, std::string> {
    const HeldWriteSignals held;
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
  std::optional<SuiteUpdate> planned;  // the edit is called once, however often its update is tried
  for (int attempts = 1;; ++attempts) {
    auto done = attempt(connection, afterPatience(), edit, planned);
    if (done) return {};
    if (!done.error().mendable || attempts == maximumAttempts) return std::unexpected(std::move(done.error().text));
    if (auto mended = mend(done.error()); !mended) return mended;
  }
}

std::expected<void, SqliteSuite::Problem> SqliteSuite::begin(std::unique_lock<std::mutex>& connection,
                                                             Deadline deadline) {
  for (;;) {
    if (!file_) return std::unexpected(Problem{"its connection was lost", true});
    auto begun = file_->begin();
    if (begun) return {};
    if (!begun.error().busy() || std::chrono::steady_clock::now() >= deadline) {
      return std::unexpected(problem(begun.error()));
    }
    // Readers go on probing while another process writes.
    connection.unlock();
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
    connection.lock();
  }
}

std::expected<void, SqliteSuite::Problem> SqliteSuite::attempt(std::unique_lock<std::mutex>& connection,
                                                               Deadline deadline, const Edit& edit,
                                                               std::optional<SuiteUpdate>& planned) {
  if (auto begun = begin(connection, deadline); !begun) return begun;
  Transaction transaction(*this);
  if (file_->moved()) return std::unexpected(Problem{"it was moved away", true});
  if (file_->truncated()) return std::unexpected(Problem{"it was truncated", true});
  if (auto done = refresh(); !done) return std::unexpected(problem(done.error()));
  if (!sound_) return std::unexpected(Problem{"entries in it are damaged", true});

  const auto& current = *published_;  // only a holder of the connection publishes
  if (!planned) planned = edit(current);
  if (planned->settle) {
    const auto unsettled = file_->readUnsettled();
    if (!unsettled) return std::unexpected(problem(unsettled.error()));
    noteDamaged(unsettled->damaged);
    planned->complete(unsettled->records);
  }
  const auto rows = rowsToWrite(current, planned->changes);
  if (!rows) return std::unexpected(Problem{rows.error()});
  const auto tooLong = [](const std::string& text) { return text.size() > maximumJournalTextBytes; };
  if (std::ranges::any_of(planned->appended, tooLong)) return std::unexpected(Problem{"a journal record is too long"});
  const bool writesJournal = planned->clearsJournal || !planned->marks.empty() || !planned->appended.empty();
  if (rows->empty() && !writesJournal) return {};
  auto next = std::make_shared<const SuiteEntries>(applied(current, planned->changes));
  if (next->size() > maximumSuiteEntries) return std::unexpected(Problem{"the store has too many entries"});

  transaction.writing();
  for (const auto& [key, stored] : *rows) {
    const auto done = stored ? file_->put(key, *stored) : file_->remove(key);
    if (!done) return std::unexpected(problem(done.error()));
  }
  if (writesJournal) {
    if (auto done = file_->writeJournal(*planned); !done) {
      Problem found = problem(done.error());
      found.beginsAnew = done.error().damage();
      return std::unexpected(std::move(found));
    }
  }
  if (auto done = file_->commit(afterPatience()); !done) return std::unexpected(problem(done.error()));
  transaction.committed();
  // Set aside by another process between our look and our commit: the changes go into the file that took its place.
  if (file_->moved()) return std::unexpected(Problem{"it was moved away", true});
  publish(std::move(next));
  return {};
}

std::expected<JournalPage, std::string> SqliteSuite::journal(std::int64_t before, std::size_t count) const {
  auto page = [&]() -> std::expected<JournalPage, std::string> {
    try {
      std::lock_guard connection(connectionMutex_);
      if (auto done = ready(); !done) return std::unexpected(std::move(done.error()));
      auto read = file_->readJournal(before, count, afterPatience());
      if (!read) return std::unexpected(problem(read.error()).text);
      noteDamaged(read->damaged);
      return std::move(*read);
    } catch (const std::exception& error) {
      return std::unexpected(error.what());
    }
  }();
  deliver();
  return page;
}

std::expected<SuiteReading, std::string> SqliteSuite::read() const {
  auto reading = [&]() -> std::expected<SuiteReading, std::string> {
    try {
      std::lock_guard connection(connectionMutex_);
      if (auto done = ready(); !done) return std::unexpected(std::move(done.error()));
      const auto deadline = afterPatience();
      auto unsettled = readOnce();
      while (!unsettled && unsettled.error().busy() && std::chrono::steady_clock::now() < deadline) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
        unsettled = readOnce();
      }
      if (!unsettled) return std::unexpected(problem(unsettled.error()).text);
      noteDamaged(unsettled->damaged);
      return SuiteReading{published_, std::move(unsettled->records)};  // only a holder of the connection publishes
    } catch (const std::exception& error) {
      return std::unexpected(error.what());
    }
  }();
  deliver();
  return reading;
}

SqliteResult<JournalPage> SqliteSuite::readOnce() const {
  if (auto begun = file_->beginReading(); !begun) return std::unexpected(begun.error());
  struct Ended {
    std::optional<SuiteFile>& file;
    ~Ended() {
      if (!file->rollback()) file.reset();
    }
  } ended{file_};
  if (auto done = refresh(); !done) return std::unexpected(done.error());
  return file_->readUnsettled();
}

// An open file stands at the path.
std::expected<void, std::string> SqliteSuite::ready() const {
  if (file_ && !file_->moved()) return {};
  auto opened = SuiteFile::open(path_, afterPatience());
  if (!opened) return std::unexpected(std::move(opened.error().text));
  adopt(std::move(*opened));
  return {};
}

void SqliteSuite::noteDamaged(const std::vector<std::int64_t>& records) const {
  for (const auto number : records) {
    if (!damagedNoted_.insert(number).second) continue;
    note("Store " + path_.string() + ": record " + std::to_string(number) + " of the journal is damaged");
  }
}

std::unique_ptr<SuiteSubscription> SqliteSuite::observe(std::function<void()> changed) {
  auto subscription = observers_->add(std::move(changed));
  if (loop_) watch();
  deliver();
  return subscription;
}

void SqliteSuite::watch() {
  std::lock_guard lock(watchMutex_);
  if (watch_) return;
  auto begun = [&]() -> std::expected<std::shared_ptr<FileWatch>, std::string> {
    try {
      return FileWatch::start(loop_, path_, [weak = weak_from_this()] {
        const auto suite = weak.lock();
        return !suite || suite->probe();
      });
    } catch (const std::exception& error) {
      return std::unexpected(error.what());
    }
  }();
  if (begun) {
    watch_ = std::move(*begun);
  } else if (!std::exchange(isWatchFaultNoted_, true)) {
    note("What other processes change in store " + path_.string() +
         " is noticed only when it is read: " + begun.error());
  }
}

SqliteSuite::Problem SqliteSuite::problem(const SqliteError& error) const {
  return {"store " + path_.string() + ": " + error.text, error.damage() || file_->moved()};
}

// Leaves a healthy file open at the path, holding what was last known to be committed.
std::expected<void, std::string> SqliteSuite::mend(const Problem& why) {
  const bool wasOpen = file_.has_value();
  std::vector<JournalRecord> journal;
  if (wasOpen && file_->moved()) {
    // Other processes may have committed to the old file after we last looked.
    if (auto content = file_->read(); content && content->unreadable.empty()) publish(std::move(*content));
  }
  if (wasOpen) journal = file_->salvageJournal();
  file_.reset();

  const auto folder = Folder::openLocked(path_.parent_path(), afterPatience());
  if (!folder) return std::unexpected(folder.error());
  {
    auto found = SuiteFile::open(path_, afterPatience());
    if (found && found->content.unreadable.empty() && !why.beginsAnew) {
      // Another process was faster, or somebody restored a copy. What stands there counts as it is: adding our keys to
      // it could bring back what has been erased from it since.
      adopt(std::move(*found));
      return {};
    }
    if (!found && found.error().fault == SuiteFile::Fault::unavailable) return std::unexpected(found.error().text);
    if (found) {
      publish(std::move(found->content));
      journal = found->file.salvageJournal();
    } else if (found.error().fault == SuiteFile::Fault::damaged && !known_) {
      publish(std::make_shared<const SuiteEntries>(SuiteEntries{{std::string(lostEntriesKey), true}}));
    }
  }

  const auto aside = SuiteFile::create(path_, *published_, journal, *folder);
  if (!aside) return std::unexpected(why.text + "; " + aside.error());
  const auto count = std::to_string(published_->size());
  if (!aside->empty()) {
    note("Store " + path_.string() + " was damaged (" + why.text + ") and is kept as " + aside->string() +
         "; a new one was begun with the " + count + " entries known");
  } else if (wasOpen) {
    note("Store " + path_.string() + " had disappeared; it was written again with the " + count + " entries known");
  }
  auto opened = SuiteFile::open(path_, afterPatience());
  if (!opened) return std::unexpected(opened.error().text);
  adopt(std::move(*opened));
  return {};
}

void SqliteSuite::adopt(SuiteFile::Opened opened) const {
  file_.emplace(std::move(opened.file));
  publish(std::move(opened.content));
}

SqliteResult<> SqliteSuite::refresh() const {
  const auto seen = file_->version();
  if (!seen) return std::unexpected(seen.error());
  if (version_ == *seen) return {};
  auto content = file_->read();
  if (!content) return std::unexpected(content.error());
  if (version_) hasChanged_ = true;  // perhaps in the journal alone
  publish(std::move(*content));
  return {};
}

void SqliteSuite::publish(SuiteContent content) const {
  version_ = content.version;
  if (known_ && *published_ != content.entries) hasChanged_ = true;
  known_ = true;
  sound_ = content.unreadable.empty();
  publish(std::make_shared<const SuiteEntries>(std::move(content.entries)));

  std::string fresh;
  std::size_t count = 0;
  for (auto& key : content.unreadable) {
    if (const auto [noted, isNew] = unreadableNoted_.insert(std::move(key)); isNew) {
      if (++count <= 10) fresh += (count == 1 ? "" : ", ") + *noted;
    }
  }
  if (count > 0) {
    note("Store " + path_.string() + ": " + std::to_string(count) + " damaged entries count as absent: " + fresh);
  }
}

void SqliteSuite::publish(std::shared_ptr<const SuiteEntries> entries) const {
  std::lock_guard lock(publishedMutex_);
  published_.swap(entries);
}

void SqliteSuite::note(std::string message) const {
  std::lock_guard lock(notesMutex_);
  notes_.push_back(std::move(message));
}

void SqliteSuite::deliver() const noexcept {
  std::vector<std::string> notes;
  {
    std::lock_guard lock(notesMutex_);
    notes.swap(notes_);
  }
  for (auto& message : notes) {
    // The host's own failure, and nobody to tell it to.
    if (report_) contained([&] { report_(KeyValueStore::ReportLevel::error, std::move(message)); });
  }
  if (!hasChanged_.exchange(false) || !loop_ || observers_->empty()) return;
  contained([&] { loop_->post([observers = observers_] { observers->tell(); }); });
}

}  // namespace quillon
