// Executors on a thread pool and the host's main loop.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>

#include "platform/Executors.h"

namespace quillon {

class WorkPool;

// Thread-safe. Queues may outlive their owner; jobs posted afterwards are dropped. The destructor drops jobs that have
// not begun and waits for running ones, except one that destroys the object; a shared pool ends with its last owner.
class AsioExecutors : public Executors {
 public:
  // Posts a job to the host's main loop, which runs jobs later, in order.
  using PostToMain = std::function<void(std::function<void()> job)>;

  // Without a host function, a thread of its own serves as the main queue. Throws std::system_error when out of
  // threads.
  explicit AsioExecutors(std::shared_ptr<WorkPool> pool, PostToMain postToMain = nullptr);
  // With its own pool.
  explicit AsioExecutors(PostToMain postToMain = nullptr, std::size_t threads = 2);
  ~AsioExecutors() override;

  std::shared_ptr<Executor> main() override;
  std::shared_ptr<Executor> background() override;
  std::shared_ptr<Executor> serial(std::string label) override;

 private:
  class HostQueue;

  std::shared_ptr<WorkPool> pool_;
  std::unique_ptr<WorkPool> mainThread_;  // the main queue is either this
  std::shared_ptr<HostQueue> hostQueue_;  // or this
};

}  // namespace quillon
