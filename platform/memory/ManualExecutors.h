// Executors whose jobs run on demand.
#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include "platform/Executors.h"

namespace quillon {

// Thread-safe. Main, background and serial queues are one FIFO queue, run on the thread of runUntilIdle(). Queues may
// outlive their owner; jobs posted afterwards are dropped.
class ManualExecutors : public Executors {
 public:
  ManualExecutors();
  ~ManualExecutors() override;

  // Runs jobs, and the jobs they post, until none is left; returns how many ran. A nested or concurrent call does
  // nothing: the first one runs the jobs.
  std::size_t runUntilIdle();

  std::shared_ptr<Executor> main() override;
  std::shared_ptr<Executor> background() override;
  std::shared_ptr<Executor> serial(std::string label) override;

 private:
  class Queue;
  std::shared_ptr<Queue> queue_;
};

}  // namespace quillon
