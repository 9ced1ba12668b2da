// The platform's thread pool: jobs, timers and descriptor waits.
#pragma once

#include <atomic>
#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/post.hpp>
#include <cstddef>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "platform/Job.h"
#include "platform/linux/WorkerThread.h"
#include "platform/parts/Contained.h"

namespace quillon {

// The event loop shared by a pool's threads and its users. Thread-safe.
class WorkLoop {
 public:
  // For timers and descriptors: they must not outlive it, and their handlers must not keep it alive, since a pending
  // wait ends only with its owner.
  boost::asio::io_context& context() { return context_; }
  bool isClosed() const { return closed_; }

  // Dropped when the loop is closed.
  template <class AsioExecutor>
  void post(const AsioExecutor& executor, Job job) {
    const std::lock_guard lock(mutex_);
    if (closed_) return;
    boost::asio::post(executor, [this, job = std::move(job)]() mutable {
      if (!closed_) contained(job);
    });
  }
  void post(Job job) { post(context_.get_executor(), std::move(job)); }

 private:
  friend class WorkPool;

  void run();
  void close();

  boost::asio::io_context context_;
  boost::asio::executor_work_guard<boost::asio::io_context::executor_type> guard_{context_.get_executor()};
  std::atomic<std::size_t> threads_{0};
  std::mutex mutex_;                 // orders posting and closing, so that no job is queued after the close
  std::atomic<bool> closed_{false};  // written under the mutex
};

// The constructor starts all threads and throws std::system_error when out of threads. The destructor drops jobs that
// have not begun and waits for running ones, except one that destroys the pool.
class WorkPool {
 public:
  // The name is for debuggers; at most 15 bytes.
  WorkPool(const std::string& name, std::size_t threads);
  ~WorkPool() { loop_->close(); }
  WorkPool(const WorkPool&) = delete;
  WorkPool& operator=(const WorkPool&) = delete;

  const std::shared_ptr<WorkLoop>& loop() const { return loop_; }

 private:
  std::shared_ptr<WorkLoop> loop_ = std::make_shared<WorkLoop>();
  std::vector<std::unique_ptr<WorkerThread>> threads_;
};

}  // namespace quillon
