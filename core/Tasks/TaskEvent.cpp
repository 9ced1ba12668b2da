#include "core/Tasks/TaskEvent.h"

#include <boost/asio/use_awaitable.hpp>
#include <system_error>
#include <utility>

namespace quillon {

void TaskEvent::happen() {
  std::vector<std::shared_ptr<Channel>> waiting;
  {
    const std::scoped_lock lock(mutex_);
    happened_ = true;
    waiting.swap(waiting_);
  }
  for (const auto& channel : waiting) channel->try_send(boost::system::error_code());
}

Task<bool> TaskEvent::happensWithin(std::chrono::milliseconds limit) {
  const auto channel = std::make_shared<Channel>(executor_, 1);  // takes the first word, of the event or of the clock
  {
    const std::scoped_lock lock(mutex_);
    if (happened_) co_return true;
    waiting_.push_back(channel);
  }
  {
    const auto timer = timerFor(limit, [channel] { channel->try_send(boost::system::error_code()); });
    co_await channel->async_receive(boost::asio::use_awaitable);
  }
  const std::scoped_lock lock(mutex_);
  std::erase(waiting_, channel);
  if (!happened_) missed_ = true;
  co_return happened_;
}

std::unique_ptr<Timer> TaskEvent::timerFor(std::chrono::milliseconds limit, Job job) {
  try {
    return clock_->after(limit, std::move(job));
  } catch (const std::system_error&) {
    return nullptr;
  }
}

bool TaskEvent::wasMissed() const {
  const std::scoped_lock lock(mutex_);
  return missed_;
}

}  // namespace quillon
