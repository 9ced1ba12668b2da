// The queues of a device: a thread of their own for all work but the main queue's, which waits for the test.
#pragma once

#include <condition_variable>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include "platform/Executors.h"
#include "platform/memory/ManualExecutors.h"

namespace quillon::testing {

// Thread-safe. Background and serial queues share one order. Jobs that have not begun when this goes are dropped.
class DeviceExecutors : public Executors {
 public:
  DeviceExecutors();
  ~DeviceExecutors() override;

  // Runs the main queue on the calling thread until nothing is left to do, there or in the background.
  void settle();

  std::shared_ptr<Executor> main() override { return mainQueue_.main(); }
  std::shared_ptr<Executor> background() override;
  std::shared_ptr<Executor> serial(std::string label) override;

 private:
  class Background;
  ManualExecutors mainQueue_;
  const std::shared_ptr<Background> background_;
  std::thread thread_;
};

}  // namespace quillon::testing
