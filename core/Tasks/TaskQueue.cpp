#include "core/Tasks/TaskQueue.h"

#include <boost/asio/use_awaitable.hpp>

namespace quillon {

Task<TaskQueue::Turn> TaskQueue::enter() {
  // The one place in the channel is taken for as long as a turn lasts.
  co_await slot_->async_send(boost::system::error_code(), boost::asio::use_awaitable);
  co_return Turn(
      std::shared_ptr<void>(nullptr, [slot = slot_](void*) { slot->try_receive([](boost::system::error_code) {}); }));
}

}  // namespace quillon
