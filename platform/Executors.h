// Where work runs.
#pragma once

#include <memory>
#include <string>

#include "Job.h"

namespace quillon {

// Thread-safe. A job that throws is contained. Jobs that have not begun when the owner goes away are dropped.
class Executor {
 public:
  virtual ~Executor() = default;
  // Runs the job later, never within this call.
  virtual void post(Job job) = 0;
};

class Executors {
 public:
  virtual ~Executors() = default;

  // The host's main queue: one job at a time, in order. Screens and host callbacks live here.
  virtual std::shared_ptr<Executor> main() = 0;
  // Many jobs at a time, in no order. A job must not block for long.
  virtual std::shared_ptr<Executor> background() = 0;
  // A queue of its own: one job at a time, in order. The label is for people who debug.
  virtual std::shared_ptr<Executor> serial(std::string label) = 0;
};

}  // namespace quillon
