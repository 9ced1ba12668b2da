// Queues whose jobs wait until they are told to run.
#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include "platform/Executors.h"

namespace quillon {

// Thread-safe. Main, background and serial queues share one order, that of posting, and one thread, that of the caller
// of runUntilIdle. A queue stays valid when its owner is gone; what is posted to it then is dropped.
class ManualExecutors : public Executors {
 public:
  ManualExecutors();
  ~ManualExecutors() override;

  // Runs jobs, and the jobs that these post, until none is left; answers how many ran. While another call of it is
  // under way, on whatever thread, it does nothing: that call runs the jobs.
  std::size_t runUntilIdle();

  std::shared_ptr<Executor> main() override;
  std::shared_ptr<Executor> background() override;
  std::shared_ptr<Executor> serial(std::string label) override;

 private:
  class Queue;
  std::shared_ptr<Queue> queue_;
};

}  // namespace quillon
