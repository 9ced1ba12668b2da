// Executors whose jobs run on demand.
#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include "platform/Executors.h"

namespace quillon {

// Thread-safe. Main, background and serial queues share one order, that of posting, and one thread, that of
// runUntilIdle(). Queues outlive their owner; jobs posted afterwards are dropped.
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
