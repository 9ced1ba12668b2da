#include "platform/linux/AsioExecutors.h"

#include <atomic>
#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/strand.hpp>
#include <mutex>
#include <utility>
#include <vector>

#include "platform/linux/WorkerThread.h"
#include "platform/parts/Contained.h"

namespace quillon {
namespace {

namespace asio = boost::asio;

// What the threads of a pool share with the queues on it.
struct Loop {
  asio::io_context context;
  asio::executor_work_guard<asio::io_context::executor_type> guard{context.get_executor()};
  std::atomic<std::size_t> threads{0};
  std::mutex mutex;                 // orders posting and closing: nothing enters a queue that nobody empties any more
  std::atomic<bool> closed{false};  // written under the mutex

  // The body of every thread. A job that was queued may own its queue, so the last thread goes through what is left
  // without running it.
  void run() {
    context.run();
    if (--threads > 0) return;
    context.restart();
    guard.reset();
    context.run();
  }

  void close() {
    const std::lock_guard lock(mutex);
    closed = true;
    context.stop();
  }

  template <class AsioExecutor>
  void post(const AsioExecutor& executor, Job job) {
    const std::lock_guard lock(mutex);
    if (closed) return;
    asio::post(executor, [this, job = std::move(job)]() mutable {
      if (!closed) contained(job);
    });
  }
};

template <class AsioExecutor>
class LoopQueue : public Executor {
 public:
  LoopQueue(std::shared_ptr<Loop> loop, AsioExecutor executor)
      : loop_(std::move(loop)), executor_(std::move(executor)) {}

  void post(Job job) override { loop_->post(executor_, std::move(job)); }

 private:
  std::shared_ptr<Loop> loop_;
  AsioExecutor executor_;
};

}  // namespace

class AsioExecutors::Pool {
 public:
  Pool(const std::string& name, std::size_t threads) {
    threads_.reserve(threads);
    try {
      for (std::size_t i = 0; i < threads; ++i) {
        ++loop_->threads;
        threads_.push_back(std::make_unique<WorkerThread>(name, [loop = loop_] { loop->run(); }));
      }
    } catch (...) {
      loop_->close();
      throw;
    }
  }
  ~Pool() { loop_->close(); }

  std::shared_ptr<Executor> concurrentQueue() const { return makeQueue(loop_->context.get_executor()); }
  std::shared_ptr<Executor> serialQueue() const { return makeQueue(asio::make_strand(loop_->context)); }

 private:
  template <class AsioExecutor>
  std::shared_ptr<Executor> makeQueue(AsioExecutor executor) const {
    return std::make_shared<LoopQueue<AsioExecutor>>(loop_, std::move(executor));
  }

  std::shared_ptr<Loop> loop_ = std::make_shared<Loop>();
  std::vector<std::unique_ptr<WorkerThread>> threads_;
};

class AsioExecutors::HostQueue : public Executor, public std::enable_shared_from_this<HostQueue> {
 public:
  explicit HostQueue(PostToMain postToMain) : postToMain_(std::move(postToMain)) {}

  void post(Job job) override {
    if (closed_) return;
    // The host's function takes copyable jobs, ours are not.
    contained([&] {
      postToMain_([self = shared_from_this(), job = std::make_shared<Job>(std::move(job))] {
        if (!self->closed_) contained(*job);
      });
    });
  }

  void close() { closed_ = true; }

 private:
  const PostToMain postToMain_;
  std::atomic<bool> closed_{false};
};

AsioExecutors::AsioExecutors(PostToMain postToMain, std::size_t threads)
    : pool_(std::make_unique<Pool>("quillon-work", threads)) {
  if (postToMain) {
    hostQueue_ = std::make_shared<HostQueue>(std::move(postToMain));
  } else {
    mainThread_ = std::make_unique<Pool>("quillon-main", 1);
  }
}

AsioExecutors::~AsioExecutors() {
  if (hostQueue_) hostQueue_->close();
}

std::shared_ptr<Executor> AsioExecutors::main() {
  if (hostQueue_) return hostQueue_;
  return mainThread_->concurrentQueue();  // its single thread keeps the order
}

std::shared_ptr<Executor> AsioExecutors::background() {
  return pool_->concurrentQueue();
}

std::shared_ptr<Executor> AsioExecutors::serial(std::string /*label*/) {
  return pool_->serialQueue();
}

}  // namespace quillon
