#pragma once

#include <chrono>
#include <condition_variable>
#include <deque>
#include <expected>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "receiver/store/DecisionStore.h"

namespace quillon::receiver {

// Commits uploads in batches of all that wait. Each writer is a thread with its own connection, which it reopens when
// lost. Thread-safe.
class CommitQueue {
 public:
  enum class Outcome {
    committed,  // durable
    busy,       // rejected, or in doubt after a lost connection; repeating is harmless
    refused,    // the store rejects this upload
  };
  // Called once, on a writer's thread.
  using Done = std::function<void(Outcome)>;
  using Open = std::function<std::expected<std::unique_ptr<DecisionStore>, StoreError>()>;

  // Events of the writers, on their threads.
  struct Observer {
    std::function<void(std::size_t uploads, std::int64_t decisions, std::int64_t fresh, std::chrono::nanoseconds)>
        committed;
    std::function<void(const std::string& text)> lost;  // a connection
    std::function<void()> opened;
  };

  static constexpr std::size_t kMaxWaiting = 8192;  // uploads
  static constexpr std::size_t kMaxWaitingDecisions = 500'000;
  static constexpr std::size_t kMaxBatch = 512;  // uploads
  static constexpr std::size_t kMaxBatchDecisions = 10'000;
  // Longer waits are answered `busy`: by then the sender has given up.
  static constexpr std::chrono::seconds kMaxWait{15};

  CommitQueue(Open open, int writers, Observer observer);
  // As after finish().
  ~CommitQueue();
  CommitQueue(const CommitQueue&) = delete;
  CommitQueue& operator=(const CommitQueue&) = delete;

  // False when full or without a connected writer; `done` is then not called.
  [[nodiscard]] bool submit(Upload upload, Done done);
  [[nodiscard]] bool isReachable() const;
  [[nodiscard]] std::size_t waiting() const;

  // Commits accepted uploads, or reports that it cannot, and ends the writers.
  void finish();

 private:
  struct Waiting {
    Upload upload;
    Done done;
    std::chrono::steady_clock::time_point since;
  };

  void write();
  std::unique_ptr<DecisionStore> openPatiently();
  // The next batch; empty when none arrived in time.
  std::vector<Waiting> takeBatch(std::unique_lock<std::mutex>& lock);
  // False when the connection is unusable.
  bool commit(DecisionStore& store, std::vector<Waiting> batch);
  std::expected<std::int64_t, StoreError> add(DecisionStore& store, std::span<const Upload> uploads) const;
  void failAllWaiting();

  const Open open_;
  const Observer observer_;
  mutable std::mutex mutex_;  // guards the members down to the writers
  std::condition_variable changed_;
  std::deque<Waiting> waiting_;
  std::size_t waitingDecisions_ = 0;
  int connected_ = 0;
  bool finishing_ = false;
  std::vector<std::thread> writers_;
};

}  // namespace quillon::receiver
