// Something that happens once, for which tasks wait.
#pragma once

#include <chrono>
#include <memory>
#include <mutex>
#include <vector>

#include "core/Tasks/Task.h"
#include "platform/Clock.h"

namespace quillon {

// Thread-safe. A task that waits holds no thread.
class TaskEvent {
 public:
  void happen();

  Task<void> happens();

  // False when that time of the clock was over first.
  Task<bool> happensWithin(std::chrono::milliseconds limit, Clock& clock);

  // Whether somebody waited for it in vain.
  [[nodiscard]] bool wasMissed() const;

 private:
  // Runs the job when it happens, or now.
  void whenItHappens(Job job);

  mutable std::mutex mutex_;  // guards the members below
  std::vector<Job> waiting_;
  bool happened_ = false;
  bool missed_ = false;
};

}  // namespace quillon
