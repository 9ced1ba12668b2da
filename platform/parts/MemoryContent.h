// The content shared by memory suites of one name.
#pragma once

#include <deque>
#include <memory>
#include <mutex>
#include <vector>

#include "platform/parts/MemorySuite.h"
#include "platform/parts/SuiteFollowers.h"

namespace quillon {

// Thread-safe.
class MemorySuite::Content {
 public:
  std::shared_ptr<const SuiteEntries> snapshot() const;
  std::shared_ptr<void> follow(Follower follower);
  // Exceptions of the edit propagate.
  std::expected<void, std::string> update(const Edit& edit);
  JournalPage journal(std::int64_t before, std::size_t count) const;
  SuiteReading read(std::size_t count) const;

  void add(std::shared_ptr<Process> process, std::weak_ptr<SuiteObservers> observers);
  // Observers of ended processes are not called.
  void notifyOthers(const SuiteObservers& writer) const;

 private:
  struct Viewer {
    std::shared_ptr<Process> process;
    std::weak_ptr<SuiteObservers> observers;
  };

  mutable std::mutex writersMutex_;  // serialises edits; locked before snapshotMutex_; guards journal_
  std::deque<JournalRecord> journal_;
  mutable std::mutex snapshotMutex_;  // guards the two members below
  std::shared_ptr<const SuiteEntries> snapshot_ = std::make_shared<SuiteEntries>();
  SuiteFollowers followers_;
  mutable std::mutex viewersMutex_;
  std::vector<Viewer> viewers_;
};

}  // namespace quillon
