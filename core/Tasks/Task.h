// Asynchronous work as coroutines over the executors of the seam.
#pragma once

#include <boost/asio/any_io_executor.hpp>
#include <boost/asio/awaitable.hpp>
#include <boost/asio/execution.hpp>
#include <boost/asio/execution_context.hpp>
#include <memory>

#include "platform/Executors.h"

namespace quillon {

// Work that runs when awaited or started, on the executor that it was started on.
template <class T>
using Task = boost::asio::awaitable<T>;

// An executor of the seam in the form that coroutines take.
class TaskExecutor {
 public:
  explicit TaskExecutor(std::shared_ptr<Executor> executor)
      : executor_(std::move(executor)), context_(std::make_shared<boost::asio::execution_context>()) {}

  boost::asio::execution_context& query(boost::asio::execution::context_t) const noexcept { return *context_; }
  static constexpr boost::asio::execution::blocking_t::never_t query(boost::asio::execution::blocking_t) noexcept {
    return {};
  }

  template <class Function>
  void execute(Function function) const {
    executor_->post(Job(std::move(function)));
  }

  bool operator==(const TaskExecutor& other) const noexcept { return executor_ == other.executor_; }

 private:
  std::shared_ptr<Executor> executor_;
  std::shared_ptr<boost::asio::execution_context> context_;
};

}  // namespace quillon
