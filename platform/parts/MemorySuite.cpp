#include <algorithm>
#include <deque>
#include <exception>
#include <iterator>
#include <utility>

#include "platform/parts/MemoryContent.h"

namespace quillon {

namespace {

std::vector<JournalRecord> unmarkedOf(const std::deque<JournalRecord>& journal, std::size_t count) {
  std::vector<JournalRecord> unmarked;
  for (auto record = journal.rbegin(); record != journal.rend() && unmarked.size() < count; ++record) {
    if (record->mark.empty()) unmarked.push_back(*record);
  }
  return unmarked;
}

JournalPage newestOf(const std::deque<JournalRecord>& journal) {
  JournalPage page;
  if (!journal.empty()) page.records.push_back(journal.back());
  return page;
}

bool holds(const SuiteEntries& entries, std::string_view key, const std::optional<PropertyValue>& value) {
  const auto found = entries.find(key);
  return found == entries.end() ? !value : value && found->second == *value;
}

SuiteEntries changed(SuiteEntries entries, const SuiteChanges& changes) {
  for (const auto& [key, value] : changes) {
    if (value) {
      entries.insert_or_assign(key, *value);
    } else {
      entries.erase(key);
    }
  }
  return entries;
}

void writeMarks(std::deque<JournalRecord>& journal, const std::map<std::int64_t, std::string>& marks) {
  for (auto& record : journal) {
    const auto mark = marks.find(record.number);
    if (mark != marks.end() && record.mark.empty()) record.mark = mark->second;
  }
}

void append(std::deque<JournalRecord>& journal, std::vector<std::string> texts) {
  for (auto& text : texts) {
    if (journal.size() >= maximumJournalRecords) {
      journal.erase(journal.begin(), journal.begin() + journalRecordsDroppedAtOnce);
    }
    journal.push_back({journal.empty() ? 1 : journal.back().number + 1, std::move(text), {}});
  }
}

}  // namespace

std::shared_ptr<const SuiteEntries> MemorySuite::Content::snapshot() const {
  std::lock_guard lock(snapshotMutex_);
  return snapshot_;
}

std::expected<void, std::string> MemorySuite::Content::update(const Edit& edit) {
  std::lock_guard turn(writersMutex_);
  const auto current = snapshot();
  SuiteUpdate update = edit(*current);
  if (update.markRecords) update.completeMarks(unmarkedOf(journal_, journal_.size()));
  if (update.appendAfter) update.completeAppended(newestOf(journal_));
  if (update.changes.contains("")) return std::unexpected("a key is empty");
  for (const auto& text : update.appended) {
    if (text.size() > maximumJournalTextBytes) return std::unexpected("a journal record is too long");
  }
  // Most updates change nothing, so the content is copied only when they do.
  std::erase_if(update.changes, [&](const auto& change) { return holds(*current, change.first, change.second); });
  auto next =
      update.changes.empty() ? current : std::make_shared<const SuiteEntries>(changed(*current, update.changes));
  if (update.clearsJournal) journal_.clear();
  if (!update.marks.empty()) writeMarks(journal_, update.marks);
  append(journal_, std::move(update.appended));
  std::lock_guard lock(snapshotMutex_);
  snapshot_.swap(next);
  if (!update.changes.empty()) followers_.tell(*snapshot_, &update.changes);
  return {};
}

std::shared_ptr<void> MemorySuite::Content::follow(Follower follower) {
  std::lock_guard lock(snapshotMutex_);
  return followers_.add(std::move(follower), *snapshot_);
}

JournalPage MemorySuite::Content::journal(std::int64_t before, std::size_t count) const {
  std::lock_guard turn(writersMutex_);
  JournalPage page;
  for (auto record = journal_.rbegin(); record != journal_.rend() && page.records.size() < count; ++record) {
    if (record->number < before) page.records.push_back(*record);
  }
  return page;
}

SuiteReading MemorySuite::Content::read(std::size_t count) const {
  std::lock_guard turn(writersMutex_);
  return {snapshot(), unmarkedOf(journal_, count)};
}

void MemorySuite::Content::add(std::shared_ptr<Process> process, std::weak_ptr<SuiteObservers> observers) {
  std::lock_guard lock(viewersMutex_);
  std::erase_if(viewers_, [](const Viewer& viewer) { return viewer.observers.expired(); });
  viewers_.push_back({std::move(process), std::move(observers)});
}

void MemorySuite::Content::notifyOthers(const SuiteObservers& writer) const {
  std::vector<std::shared_ptr<SuiteObservers>> told;
  {
    std::lock_guard lock(viewersMutex_);
    for (const auto& [process, known] : viewers_) {
      if (const auto observers = known.lock(); observers && observers.get() != &writer && !process->hasEnded) {
        told.push_back(observers);
      }
    }
  }
  for (const auto& observers : told) observers->notify();
}

MemorySuite::MemorySuite() : MemorySuite(std::make_shared<Content>(), std::make_shared<Process>()) {}

MemorySuite::MemorySuite(std::shared_ptr<Content> content, std::shared_ptr<Process> process)
    : content_(std::move(content)), process_(std::move(process)), observers_(std::make_shared<SuiteObservers>()) {
  content_->add(process_, observers_);
}

std::shared_ptr<const SuiteEntries> MemorySuite::snapshot() const {
  return content_->snapshot();
}

std::shared_ptr<void> MemorySuite::follow(Follower follower) {
  return content_->follow(std::move(follower));
}

std::expected<void, std::string> MemorySuite::update(const Edit& edit) {
  try {
    if (process_->hasEnded) return std::unexpected("the process has ended");
    const auto fault = process_->fault ? process_->fault() : MemoryFault::none;
    // The edit runs anyway, as on a disk that turns out to be full only when writing.
    if (fault == MemoryFault::before) {
      static_cast<void>(edit(*snapshot()));
      return std::unexpected("the disk is full");
    }
    auto done = content_->update(edit);
    if (!done) return done;
    content_->notifyOthers(*observers_);
    if (fault == MemoryFault::after) return std::unexpected("the process ended before it heard of the update");
    return done;
  } catch (const std::exception& error) {
    return std::unexpected(error.what());
  } catch (...) {
    return std::unexpected("unknown exception");
  }
}

std::expected<JournalPage, std::string> MemorySuite::journal(std::int64_t before, std::size_t count) const {
  return content_->journal(before, count);
}

std::expected<SuiteReading, std::string> MemorySuite::read(std::size_t count) const {
  return content_->read(count);
}

std::unique_ptr<SuiteSubscription> MemorySuite::observe(std::function<void()> changed) {
  return observers_->add(std::move(changed));
}

}  // namespace quillon
