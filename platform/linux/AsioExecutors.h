// Work on a pool of threads and on the host's main loop.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>

#include "platform/Executors.h"

namespace quillon {

class WorkPool;

// Thread-safe. Queues stay valid when their owner is gone; what is posted to them then is dropped. The owner's end
// drops jobs that have not begun and waits for those under way on its threads, except for the one that causes it; a
// pool that others share ends with its last owner.
class AsioExecutors : public Executors {
 public:
  // Hands a job to the host's main loop, which runs it later, in order.
  using PostToMain = std::function<void(std::function<void()> job)>;

  // Without a function of the host's a thread of our own serves as the main queue. Throws std::system_error when the
  // system has no thread left.
  explicit AsioExecutors(std::shared_ptr<WorkPool> pool, PostToMain postToMain = nullptr);
  // With a pool of its own.
  explicit AsioExecutors(PostToMain postToMain = nullptr, std::size_t threads = 2);
  ~AsioExecutors() override;

  std::shared_ptr<Executor> main() override;
  std::shared_ptr<Executor> background() override;
  std::shared_ptr<Executor> serial(std::string label) override;

 private:
  class HostQueue;

  std::shared_ptr<WorkPool> pool_;
  std::unique_ptr<WorkPool> mainThread_;  // one of these two
  std::shared_ptr<HostQueue> hostQueue_;  // is the main queue
};

}  // namespace quillon
