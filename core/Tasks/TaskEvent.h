// A one-shot event that tasks can await.
#pragma once

#include <chrono>
#include <memory>
#include <mutex>
#include <vector>

#include "core/Tasks/Task.h"
#include "platform/Clock.h"

namespace quillon {

// Thread-safe. Waiting blocks no thread.
class TaskEvent {
 public:
  void signal();

  Task<void> wait();

  // False on timeout.
  Task<bool> waitFor(std::chrono::milliseconds limit, Clock& clock);

  // Whether a wait timed out.
  [[nodiscard]] bool hasTimedOut() const;

 private:
  // Runs the job when signalled; at once if it already is.
  void onSignal(Job job);

  mutable std::mutex mutex_;  // guards the members below
  std::vector<Job> waiting_;
  bool signalled_ = false;
  bool timedOut_ = false;
};

}  // namespace quillon
