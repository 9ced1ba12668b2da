#include "core/Tasks/Suspension.h"

#include <boost/asio/post.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <utility>

namespace quillon {

Task<void> suspendedUntilRun(std::move_only_function<void(Job)> start) {
  using boost::asio::use_awaitable;
  const auto initiate = [](auto handler, std::move_only_function<void(Job)> function) {
    const auto executor = boost::asio::get_associated_executor(handler);
    function([executor, handler = std::move(handler)]() mutable { boost::asio::post(executor, std::move(handler)); });
  };
  co_await boost::asio::async_initiate<const boost::asio::use_awaitable_t<>, void()>(initiate, use_awaitable,
                                                                                     std::move(start));
}

}  // namespace quillon
