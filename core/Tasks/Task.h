// Coroutines on the platform's executors.
#pragma once

#include <boost/asio/any_io_executor.hpp>
#include <boost/asio/awaitable.hpp>
#include <boost/asio/execution.hpp>
#include <boost/asio/execution_context.hpp>
#include <memory>

#include "platform/Executors.h"

namespace quillon {

// A coroutine: runs when awaited or started, on the executor it was started on.
template <class T>
using Task = boost::asio::awaitable<T>;

// Adapts a platform executor for Asio. One pointer in size, so that Asio stores it inline.
class TaskExecutor {
 public:
  explicit TaskExecutor(std::shared_ptr<Executor> executor) : target_(std::make_shared<Target>(std::move(executor))) {}

  boost::asio::execution_context& query(boost::asio::execution::context_t) const noexcept { return target_->context; }
  static constexpr boost::asio::execution::blocking_t::never_t query(boost::asio::execution::blocking_t) noexcept {
    return {};
  }

  template <class Function>
  void execute(Function function) const {
    target_->executor->post(Job(std::move(function)));
  }

  bool operator==(const TaskExecutor& other) const noexcept { return target_ == other.target_; }

 private:
  struct Target {
    explicit Target(std::shared_ptr<Executor> to) : executor(std::move(to)) {}
    const std::shared_ptr<Executor> executor;
    boost::asio::execution_context context;
  };
  std::shared_ptr<Target> target_;
};

}  // namespace quillon
