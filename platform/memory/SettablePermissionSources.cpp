#include "platform/memory/SettablePermissionSources.h"

#include <utility>

namespace quillon {

class SettablePermissionSources::Subscription : public PermissionSubscription {
 public:
  Subscription(std::shared_ptr<Observer> observer, std::unique_ptr<PermissionSubscription> device)
      : observer_(std::move(observer)), device_(std::move(device)) {}
  ~Subscription() override { observer_->gate.close(); }

 private:
  const std::shared_ptr<Observer> observer_;
  const std::unique_ptr<PermissionSubscription> device_;
};

void SettablePermissionSources::set(const VantariKey& key, std::expected<Value, std::string> answer) {
  std::vector<std::shared_ptr<Observer>> told;
  {
    const std::lock_guard lock(mutex_);
    answers_.insert_or_assign(key.rawValue(), std::move(answer));
    std::erase_if(observers_, [&](const std::weak_ptr<Observer>& weak) {
      auto observer = weak.lock();
      if (observer) told.push_back(observer);
      return !observer;
    });
  }
  for (const auto& observer : told) observer->gate.pass(observer->changed);
}

std::optional<std::expected<PermissionSources::Value, std::string>> SettablePermissionSources::given(
    const VantariKey& key) const {
  const std::lock_guard lock(mutex_);
  const auto found = answers_.find(key.rawValue());
  return found == answers_.end() ? std::nullopt : std::optional(found->second);
}

std::expected<PermissionSources::Value, std::string> SettablePermissionSources::platformValue(
    const VantariKey& key) const {
  if (const auto answer = given(key)) return *answer;
  return device_ ? device_->platformValue(key) : Value();
}

std::expected<PermissionSources::Value, std::string> SettablePermissionSources::knownValue(
    const VantariKey& key) const {
  if (const auto answer = given(key)) return *answer;
  return device_ ? device_->knownValue(key) : Value();
}

std::unique_ptr<PermissionSubscription> SettablePermissionSources::observe(std::function<void()> changed) {
  auto device = device_ ? device_->observe(changed) : nullptr;
  auto observer = std::make_shared<Observer>();
  observer->changed = std::move(changed);
  const std::lock_guard lock(mutex_);
  observers_.push_back(observer);
  return std::make_unique<Subscription>(std::move(observer), std::move(device));
}

}  // namespace quillon
