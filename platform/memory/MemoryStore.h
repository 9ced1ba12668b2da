// A store that forgets: for hosts without a file system, simulations and tests.
#pragma once

#include <deque>
#include <map>
#include <mutex>

#include "platform/KeyValueSuite.h"

namespace quillon {

// Lives in this process only. An update fails only when its edit throws, names the empty key or appends a text that is
// too long, and for as long as `isFull` says so, which must be thread-safe.
class MemorySuite final : public KeyValueSuite {
 public:
  explicit MemorySuite(std::function<bool()> isFull = {}) : isFull_(std::move(isFull)) {}

  std::shared_ptr<const SuiteEntries> snapshot() const override;
  std::expected<void, std::string> update(const Edit& edit) override;
  std::expected<JournalPage, std::string> journal(std::int64_t before, std::size_t count) const override;

 private:
  const std::function<bool()> isFull_;
  mutable std::mutex writersMutex_;  // one edit at a time; taken before snapshotMutex_; guards journal_
  std::deque<JournalRecord> journal_;
  mutable std::mutex snapshotMutex_;
  std::shared_ptr<const SuiteEntries> snapshot_ = std::make_shared<SuiteEntries>();
};

// Opens every name; the suites live as long as this object or their last user. Never reports.
class MemoryStore final : public KeyValueStore {
 public:
  explicit MemoryStore(std::function<bool()> isFull = {}) : isFull_(std::move(isFull)) {}

  std::shared_ptr<KeyValueSuite> open(std::string_view name, Report report) override;
  std::shared_ptr<KeyValueSuite> standardDefaults() override;

 private:
  const std::function<bool()> isFull_;
  const std::shared_ptr<KeyValueSuite> standardDefaults_ = std::make_shared<MemorySuite>();
  std::mutex mutex_;
  std::map<std::string, std::shared_ptr<KeyValueSuite>, std::less<>> suites_;
};

}  // namespace quillon
