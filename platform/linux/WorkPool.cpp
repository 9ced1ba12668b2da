#include "platform/linux/WorkPool.h"

namespace quillon {

// The body of every thread. A queued job may own its queue, so the last thread destroys remaining jobs without running
// them; timers and descriptors end with their owners.
void WorkLoop::run() {
  context_.run();
  if (--threads_ > 0) return;
  context_.restart();
  context_.poll();
}

void WorkLoop::close() {
  const std::lock_guard lock(mutex_);
  closed_ = true;
  context_.stop();
}

WorkPool::WorkPool(const std::string& name, std::size_t threads) {
  threads_.reserve(threads);
  try {
    for (std::size_t i = 0; i < threads; ++i) {
      ++loop_->threads_;
      threads_.push_back(std::make_unique<WorkerThread>(name, [loop = loop_] { loop->run(); }));
    }
  } catch (...) {
    loop_->close();
    throw;
  }
}

}  // namespace quillon
