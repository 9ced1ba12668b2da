#include "platform/linux/SqliteSuite.h"

#include <algorithm>
#include <ctime>
#include <exception>
#include <thread>
#include <utility>

#include "platform/linux/BlockedWriteSignals.h"
#include "platform/linux/FileWatch.h"
#include "platform/parts/Contained.h"

namespace quillon {

namespace {

// The application depends on the store, so transient errors are retried.
constexpr int attemptsToOpen = 3;

// Below the promised 100 ms, as this clock lags by up to a tick (10 ms at most).
constexpr std::int64_t probeIntervalNanoseconds = 90'000'000;

std::int64_t coarseNanoseconds() {
  std::timespec now{};
  ::clock_gettime(CLOCK_MONOTONIC_COARSE, &now);
  return std::int64_t{now.tv_sec} * 1'000'000'000 + now.tv_nsec;
}

}  // namespace

SqliteSuite::SqliteSuite(std::filesystem::path file, KeyValueStore::Report report, std::shared_ptr<WorkLoop> loop)
    : path_(std::move(file)), report_(std::move(report)), loop_(std::move(loop)) {}

std::expected<std::shared_ptr<SqliteSuite>, std::string> SqliteSuite::open(std::filesystem::path file,
                                                                           KeyValueStore::Report report,
                                                                           std::shared_ptr<WorkLoop> loop,
                                                                           std::chrono::milliseconds openWait) {
  std::shared_ptr<SqliteSuite> suite(new SqliteSuite(std::move(file), std::move(report), std::move(loop)));
  std::expected<void, std::string> started;
  {
    const BlockedWriteSignals held;
    std::lock_guard connection(suite->connectionMutex_);
    started = suite->start(openWait);
    suite->hasChanged_ = false;
  }
  suite->deliver();
  if (!started) return std::unexpected("Store " + suite->path_.string() + " cannot be opened: " + started.error());
  if (suite->isLockedElsewhere_ && suite->loop_) suite->watch();
  return suite;
}

std::expected<void, std::string> SqliteSuite::start(std::chrono::milliseconds openWait) {
  const auto deadline = std::chrono::steady_clock::now() + openWait;
  for (int attempts = 1;;) {
    auto opened = SuiteFile::open(path_, deadline);
    if (opened) {
      useFile(std::move(*opened));
      return {};
    }
    Problem problem = std::move(opened.error());
    if (problem.recovery != Recovery::none && problem.recovery != Recovery::wait) {
      auto recovered = recover(problem);
      if (recovered) return {};
      problem = std::move(recovered.error());
    }
    if (problem.recovery != Recovery::wait) {
      if (attempts++ == attemptsToOpen) return std::unexpected(std::move(problem.text));
    } else if (std::chrono::steady_clock::now() >= deadline) {
      startWithoutContent(problem.text);
      return {};
    }
  }
}

// The stored content is unknown, so every purpose counts as undecided.
void SqliteSuite::startWithoutContent(const std::string& why) {
  isLockedElsewhere_ = true;
  publish(SuiteEntries{{std::string(lostEntriesKey), true}});
  note("Store " + path_.string() + " is held by another process (" + why +
       "): until it lets go, nothing can be stored, and what is stored counts as not decided");
}

std::shared_ptr<const SuiteEntries> SqliteSuite::snapshot() const {
  if (coarseNanoseconds() >= nextProbe_.load(std::memory_order_relaxed)) probe();
  std::lock_guard lock(publishedMutex_);
  return published_;
}

std::shared_ptr<void> SqliteSuite::follow(Follower follower) {
  std::shared_ptr<void> handle;
  {
    std::lock_guard lock(publishedMutex_);
    handle = followers_.add(std::move(follower), *published_);
  }
  if (loop_) watch();
  deliver();
  return handle;
}

bool SqliteSuite::probe() const noexcept {
  try {
    std::unique_lock connection(connectionMutex_, std::try_to_lock);
    if (!connection) return false;
    bool hasProbed = true;
    if (!file_ || file_->moved()) {
      // Another process has replaced the file, or an older copy was restored. Without a usable file the last known
      // content stays valid until the next update repairs the file.
      auto opened = SuiteFile::open(path_, Deadline::min());
      if (opened) {
        useFile(std::move(*opened));
      } else if (isLockedElsewhere_ || opened.error().recovery == Recovery::wait) {
        hasProbed = false;
      }
    } else if (const auto done = refresh(); !done) {
      if (done.error().recovery == Recovery::wait) return false;  // during a commit; the next reader probes again
      if (version_) note("Store " + path_.string() + " cannot be read any more: " + done.error().text);
      version_.reset();
    }
    nextProbe_.store(coarseNanoseconds() + probeIntervalNanoseconds, std::memory_order_relaxed);
    connection.unlock();
    deliver();
    return hasProbed;
  } catch (...) {
    return false;  // out of memory: the snapshot stays, and the next reader retries
  }
}

std::expected<JournalPage, std::string> SqliteSuite::journal(std::int64_t before, std::size_t count) const {
  auto page = [&]() -> std::expected<JournalPage, std::string> {
    try {
      std::lock_guard connection(connectionMutex_);
      if (auto done = ready(); !done) return std::unexpected(std::move(done.error()));
      auto read = file_->readJournal(before, count, writerDeadline());
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

std::expected<SuiteReading, std::string> SqliteSuite::read(std::size_t count) const {
  auto reading = [&]() -> std::expected<SuiteReading, std::string> {
    try {
      std::lock_guard connection(connectionMutex_);
      if (auto done = ready(); !done) return std::unexpected(std::move(done.error()));
      const auto deadline = writerDeadline();
      auto unmarked = readOnce(count);
      while (!unmarked && unmarked.error().recovery == Recovery::wait && file_ &&
             std::chrono::steady_clock::now() < deadline) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
        unmarked = readOnce(count);
      }
      if (!unmarked) return std::unexpected(problem(unmarked.error()).text);
      noteDamaged(unmarked->damaged);
      return SuiteReading{published_, std::move(unmarked->records)};  // published_ is stable under connectionMutex_
    } catch (const std::exception& error) {
      return std::unexpected(error.what());
    }
  }();
  deliver();
  return reading;
}

SqliteResult<JournalPage> SqliteSuite::readOnce(std::size_t count) const {
  if (auto begun = file_->beginReading(); !begun) return std::unexpected(begun.error());
  struct Ended {
    std::optional<SuiteFile>& file;
    ~Ended() {
      if (!file->rollback()) file.reset();
    }
  } ended{file_};
  if (auto done = refresh(); !done) return std::unexpected(done.error());
  return file_->readUnmarked(count);
}

// Ensures that file_ is open and still at the path.
std::expected<void, std::string> SqliteSuite::ready() const {
  if (file_ && !file_->moved()) return {};
  auto opened = SuiteFile::open(path_, writerDeadline());
  if (!opened) return std::unexpected(std::move(opened.error().text));
  useFile(std::move(*opened));
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
  // Out of memory: the next follower or observer retries.
  contained([&] {
    watch_ = FileWatch::start(loop_, path_, [weak = weak_from_this()] {
      const auto suite = weak.lock();
      return !suite || suite->probe();
    });
    if (watch_->fault().empty()) return;
    note("What other processes change in store " + path_.string() +
         " is looked for ten times a second, as the system cannot watch it: " + watch_->fault());
  });
}

void SqliteSuite::useFile(SuiteFile::Opened opened) const {
  file_.emplace(std::move(opened.file));
  publish(std::move(opened.content));
}

SqliteResult<> SqliteSuite::refresh() const {
  const auto seen = file_->version();
  if (!seen) return std::unexpected(seen.error());
  if (version_ == *seen) return {};
  auto content = file_->read();
  if (!content) return std::unexpected(content.error());
  if (version_) hasChanged_ = true;  // possibly only in the journal
  publish(std::move(*content));
  return {};
}

void SqliteSuite::publish(SuiteContent content) const {
  if (*published_ != content.entries) hasChanged_ = true;
  isKnown_ = true;
  sound_ = content.unreadable.empty();
  if (std::exchange(isLockedElsewhere_, false)) {
    note("Store " + path_.string() + " is free again and in use", KeyValueStore::ReportLevel::information);
  }
  publish(std::move(content.entries));
  version_ = content.version;

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

void SqliteSuite::publish(SuiteEntries entries) const {
  auto next = std::make_shared<SuiteEntries>(std::move(entries));
  std::lock_guard lock(publishedMutex_);
  published_.swap(next);
  followers_.tell(*published_, nullptr);
}

// Changes the content in place unless a snapshot is held, so that the cost depends on the change and not on the size.
void SqliteSuite::publish(SuiteEntries changed, const SuiteChanges& changes) const {
  const auto version = std::exchange(version_, std::nullopt);  // if memory runs out below, the file is read again
  std::lock_guard lock(publishedMutex_);
  if (published_.use_count() > 1) {
    published_ = std::make_shared<SuiteEntries>(*published_);
  } else {
    // Copying and dropping the pointer synchronises with the last snapshot's release; use_count() does not.
    const auto last = published_;
  }
  const auto size = published_->size() + changed.size();
  if (size > published_->bucket_count()) published_->reserve(2 * size);  // nothing is allocated below
  for (const auto& [key, value] : changes) published_->erase(key);
  published_->merge(changed);
  followers_.tell(*published_, &changes);
  version_ = version;
}

void SqliteSuite::note(std::string message, KeyValueStore::ReportLevel level) const {
  std::lock_guard lock(notesMutex_);
  notes_.emplace_back(level, std::move(message));
}

void SqliteSuite::deliver() const noexcept {
  std::vector<Note> notes;
  {
    std::lock_guard lock(notesMutex_);
    notes.swap(notes_);
  }
  for (auto& [level, message] : notes) {
    // The report is host code; its exceptions cannot be reported anywhere.
    if (report_) contained([&] { report_(level, std::move(message)); });
  }
  if (!hasChanged_.exchange(false) || !loop_ || observers_->empty()) return;
  contained([&] { loop_->post([observers = observers_] { observers->notify(); }); });
}

}  // namespace quillon
