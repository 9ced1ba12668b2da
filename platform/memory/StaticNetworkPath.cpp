#include "platform/memory/StaticNetworkPath.h"

#include <utility>

namespace quillon {

class StaticNetworkPath::Subscription : public NetworkSubscription {
 public:
  explicit Subscription(std::shared_ptr<NetworkReporter> reporter) : reporter_(std::move(reporter)) {}
  ~Subscription() override { reporter_->close(); }

 private:
  std::shared_ptr<NetworkReporter> reporter_;
};

void StaticNetworkPath::set(NetworkStatus status) {
  const std::lock_guard lock(mutex_);
  if (std::exchange(status_, status) == status) return;
  std::erase_if(reporters_, [status](const std::weak_ptr<NetworkReporter>& weak) {
    const auto reporter = weak.lock();
    if (reporter) reporter->report(status);
    return !reporter;
  });
}

std::unique_ptr<NetworkSubscription> StaticNetworkPath::start(std::shared_ptr<Executor> queue,
                                                              std::function<void(NetworkStatus)> handler) {
  const auto reporter = std::make_shared<NetworkReporter>(std::move(queue), std::move(handler));
  const std::lock_guard lock(mutex_);
  reporter->report(status_);
  reporters_.push_back(reporter);
  return std::make_unique<Subscription>(reporter);
}

}  // namespace quillon
