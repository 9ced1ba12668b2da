// What the memory suites of one name share.
#pragma once

#include <deque>
#include <memory>
#include <mutex>
#include <vector>

#include "platform/parts/MemorySuite.h"

namespace quillon {

// Thread-safe.
class MemorySuite::Content {
 public:
  std::shared_ptr<const SuiteEntries> snapshot() const;
  // What the edit throws passes through.
  std::expected<void, std::string> update(const Edit& edit);
  JournalPage journal(std::int64_t before, std::size_t count) const;
  SuiteReading read() const;

  void add(std::shared_ptr<Process> process, std::weak_ptr<SuiteObservers> observers);
  // Those of processes that have ended hear nothing.
  void notifyOthers(const SuiteObservers& writer) const;

 private:
  struct Viewer {
    std::shared_ptr<Process> process;
    std::weak_ptr<SuiteObservers> observers;
  };

  mutable std::mutex writersMutex_;  // one edit at a time; taken before snapshotMutex_; guards journal_
  std::deque<JournalRecord> journal_;
  mutable std::mutex snapshotMutex_;
  std::shared_ptr<const SuiteEntries> snapshot_ = std::make_shared<SuiteEntries>();
  mutable std::mutex viewersMutex_;
  std::vector<Viewer> viewers_;
};

}  // namespace quillon
