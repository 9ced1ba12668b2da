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

// Commits uploads, as many at once as wait at that moment. Each writer is a thread with a connection of its own, which
// it opens again whenever it is lost. Thread-safe.
class CommitQueue {
 public:
  enum class Outcome {
    committed,  // on disk
    busy,       // not taken, or lost on its way: nobody knows whether it is on disk, and a repeat does no harm
    refused,    // the store will not take this one
  };
  // Called once, from a writer's thread.
  using Done = std::function<void(Outcome)>;
  using Open = std::function<std::expected<std::unique_ptr<DecisionStore>, StoreError>()>;

  // What the writers tell, from their threads.
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
  // What has waited longer is told to come again: by then somebody has given up on it.
  static constexpr std::chrono::seconds kMaxWait{15};

  CommitQueue(Open open, int writers, Observer observer);
  // As after finish().
  ~CommitQueue();
  CommitQueue(const CommitQueue&) = delete;
  CommitQueue& operator=(const CommitQueue&) = delete;

  // False when it is full or no writer has a connection; then done is not called.
  [[nodiscard]] bool submit(Upload upload, Done done);
  [[nodiscard]] bool isReachable() const;
  [[nodiscard]] std::size_t waiting() const;

  // Commits what was taken, or tells that it cannot, and ends the writers.
  void finish();

 private:
  struct Waiting {
    Upload upload;
    Done done;
    std::chrono::steady_clock::time_point since;
  };

  void write();
  std::unique_ptr<DecisionStore> openPatiently();
  // What the next commit takes; empty when nothing came in time.
  std::vector<Waiting> takeBatch(std::unique_lock<std::mutex>& lock);
  // False when the connection is of no use any more.
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
