#include "platform/memory/SettablePermissionSources.h"

#include <utility>

namespace quillon {

// Subscribes to the values set here, and to the device's.
class SettablePermissionSources::Subscription : public PermissionSubscription {
 public:
  Subscription(std::unique_ptr<PermissionSubscription> own, std::unique_ptr<PermissionSubscription> device)
      : own_(std::move(own)), device_(std::move(device)) {}

 private:
  const std::unique_ptr<PermissionSubscription> own_;
  const std::unique_ptr<PermissionSubscription> device_;
};

void SettablePermissionSources::set(const VantariKey& key, std::expected<Value, std::string> answer) {
  {
    const std::lock_guard lock(mutex_);
    answers_.insert_or_assign(key.rawValue(), std::move(answer));
  }
  observers_.notify();
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
  return std::make_unique<Subscription>(observers_.add(std::move(changed)), std::move(device));
}

}  // namespace quillon
