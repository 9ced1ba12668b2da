// Executors: queues that run jobs.
#pragma once

#include <memory>
#include <string>

#include "Job.h"

namespace quillon {

// Thread-safe. Exceptions of jobs are contained. Jobs that have not begun when the owner is destroyed are dropped.
class Executor {
 public:
  virtual ~Executor() = default;
  // Runs the job later, never inside this call.
  virtual void post(Job job) = 0;
};

class Executors {
 public:
  virtual ~Executors() = default;

  // The host's main queue: one job at a time, in order. Screens and host callbacks run here.
  virtual std::shared_ptr<Executor> main() = 0;
  // Concurrent jobs, unordered. A job must not block for long.
  virtual std::shared_ptr<Executor> background() = 0;
  // A separate queue: one job at a time, in order. The label is for debugging.
  virtual std::shared_ptr<Executor> serial(std::string label) = 0;
};

}  // namespace quillon
