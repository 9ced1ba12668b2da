// The executors of a device: one thread for all queues except the main queue, which runs on demand.
#pragma once

#include <condition_variable>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include "platform/Executors.h"
#include "platform/memory/ManualExecutors.h"

namespace quillon::testing {

// Thread-safe. Background and serial queues are one FIFO queue. Jobs that have not begun on destruction are dropped.
class DeviceExecutors : public Executors {
 public:
  DeviceExecutors();
  ~DeviceExecutors() override;

  // Runs the main queue on the calling thread until no job is left there or in the background.
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
