#include "platform/memory/MemoryStore.h"

#include <algorithm>
#include <exception>
#include <iterator>

namespace quillon {

namespace {

void settle(std::deque<JournalRecord>& journal, const decltype(SuiteUpdate::settle)& markOf) {
  std::vector<JournalRecord> unsettled;
  std::copy_if(journal.rbegin(), journal.rend(), std::back_inserter(unsettled),
               [](const JournalRecord& record) { return record.mark.empty(); });
  const auto marks = markOf(unsettled);
  for (std::size_t i = 0; i < std::min(marks.size(), unsettled.size()); ++i) {
    const auto settled = std::ranges::lower_bound(journal, unsettled[i].number, {}, &JournalRecord::number);
    settled->mark = marks[i];
  }
}

}  // namespace

std::shared_ptr<const SuiteEntries> MemorySuite::snapshot() const {
  std::lock_guard lock(snapshotMutex_);
  return snapshot_;
}

std::expected<void, std::string> MemorySuite::update(const Edit& edit) {
  try {
    std::lock_guard turn(writersMutex_);
    auto entries = *snapshot();
    SuiteUpdate update = edit(entries);
    if (isFull_ && isFull_()) return std::unexpected("the disk is full");
    for (auto& [key, value] : update.changes) {
      if (key.empty()) return std::unexpected("a key is empty");
      if (value) {
        entries.insert_or_assign(key, value.value());
      } else {
        entries.erase(key);
      }
    }
    for (const auto& text : update.appended) {
      if (text.size() > maximumJournalTextBytes) return std::unexpected("a journal record is too long");
    }
    auto next = std::make_shared<const SuiteEntries>(std::move(entries));
    if (update.clearsJournal) journal_.clear();
    if (update.settle) settle(journal_, update.settle);
    for (auto& text : update.appended) {
      if (journal_.size() >= maximumJournalRecords) {
        journal_.erase(journal_.begin(), journal_.begin() + journalRecordsDroppedAtOnce);
      }
      journal_.push_back({journal_.empty() ? 1 : journal_.back().number + 1, std::move(text), {}});
    }
    std::lock_guard lock(snapshotMutex_);
    snapshot_.swap(next);
    return {};
  } catch (const std::exception& error) {
    return std::unexpected(error.what());
  } catch (...) {
    return std::unexpected("unknown exception");
  }
}

std::expected<JournalPage, std::string> MemorySuite::journal(std::int64_t before, std::size_t count) const {
  std::lock_guard turn(writersMutex_);
  JournalPage page;
  for (auto record = journal_.rbegin(); record != journal_.rend() && page.records.size() < count; ++record) {
    if (record->number < before) page.records.push_back(*record);
  }
  return page;
}

std::shared_ptr<KeyValueSuite> MemoryStore::open(std::string_view name, Report) {
  std::lock_guard lock(mutex_);
  auto& suite = suites_[std::string(name)];
  if (!suite) suite = std::make_shared<MemorySuite>(isFull_);
  return suite;
}

std::shared_ptr<KeyValueSuite> MemoryStore::standardDefaults() {
  return standardDefaults_;
}

}  // namespace quillon
