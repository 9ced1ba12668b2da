// Internal observers, as opposed to the application's listeners.
#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

namespace quillon {

// Thread-safe. A follower is called until its handle is dropped; a concurrent call may still run then.
template <class... Arguments>
class Followers {
 public:
  using Call = std::function<void(Arguments...)>;

  [[nodiscard]] std::shared_ptr<void> add(Call call) {
    auto follower = std::make_shared<Call>(std::move(call));
    const std::scoped_lock lock(mutex_);
    std::erase_if(followers_, [](const auto& earlier) { return earlier.expired(); });
    followers_.push_back(follower);
    return follower;
  }

  void notify(Arguments... arguments) const {
    std::vector<std::weak_ptr<Call>> followers;
    {
      const std::scoped_lock lock(mutex_);
      followers = followers_;
    }
    for (const auto& each : followers) {
      if (const auto follower = each.lock()) (*follower)(arguments...);
    }
  }

 private:
  mutable std::mutex mutex_;  // guards the member below; never held while one is called
  std::vector<std::weak_ptr<Call>> followers_;
};

}  // namespace quillon
