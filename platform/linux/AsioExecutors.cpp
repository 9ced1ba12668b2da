#include "platform/linux/AsioExecutors.h"

#include <atomic>
#include <boost/asio/strand.hpp>
#include <utility>

#include "platform/linux/WorkPool.h"
#include "platform/parts/Contained.h"

namespace quillon {
namespace {

namespace asio = boost::asio;

template <class AsioExecutor>
class LoopQueue : public Executor {
 public:
  LoopQueue(std::shared_ptr<WorkLoop> loop, AsioExecutor executor)
      : loop_(std::move(loop)), executor_(std::move(executor)) {}

  void post(Job job) override { loop_->post(executor_, std::move(job)); }

 private:
  std::shared_ptr<WorkLoop> loop_;
  AsioExecutor executor_;
};

template <class AsioExecutor>
std::shared_ptr<Executor> queue(std::shared_ptr<WorkLoop> loop, AsioExecutor executor) {
  return std::make_shared<LoopQueue<AsioExecutor>>(std::move(loop), std::move(executor));
}

std::shared_ptr<Executor> concurrentQueue(const WorkPool& pool) {
  return queue(pool.loop(), pool.loop()->context().get_executor());
}

}  // namespace

class AsioExecutors::HostQueue : public Executor, public std::enable_shared_from_this<HostQueue> {
 public:
  explicit HostQueue(PostToMain postToMain) : postToMain_(std::move(postToMain)) {}

  void post(Job job) override {
    if (closed_) return;
    // The host's function takes copyable jobs; ours are move-only.
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

AsioExecutors::AsioExecutors(std::shared_ptr<WorkPool> pool, PostToMain postToMain) : pool_(std::move(pool)) {
  if (postToMain) {
    hostQueue_ = std::make_shared<HostQueue>(std::move(postToMain));
  } else {
    mainThread_ = std::make_unique<WorkPool>("quillon-main", 1);
  }
}

AsioExecutors::AsioExecutors(PostToMain postToMain, std::size_t threads)
    : AsioExecutors(std::make_shared<WorkPool>("quillon-work", threads), std::move(postToMain)) {}

AsioExecutors::~AsioExecutors() {
  if (hostQueue_) hostQueue_->close();
}

std::shared_ptr<Executor> AsioExecutors::main() {
  if (hostQueue_) return hostQueue_;
  return concurrentQueue(*mainThread_);  // its single thread keeps the order
}

std::shared_ptr<Executor> AsioExecutors::background() {
  return concurrentQueue(*pool_);
}

std::shared_ptr<Executor> AsioExecutors::serial(std::string /*label*/) {
  return queue(pool_->loop(), asio::make_strand(pool_->loop()->context()));
}

}  // namespace quillon
