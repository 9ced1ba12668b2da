#include "platform/linux/NetlinkPathMonitor.h"

#include <poll.h>
#include <sys/eventfd.h>

#include <array>
#include <cstdint>
#include <utility>

#include "platform/linux/RouteTable.h"
#include "platform/linux/WorkerThread.h"
#include "platform/parts/NetworkReporter.h"

namespace quillon {
namespace {

constexpr int forEver = -1;
constexpr int burstMilliseconds = 100;  // an interface coming up causes a burst of changes

// The state shared by a subscription and its thread.
class Watch {
 public:
  explicit Watch(std::shared_ptr<NetworkReporter> reporter) : reporter_(std::move(reporter)) {}

  void close() const {
    reporter_->close();
    const std::uint64_t one = 1;
    // Fails only when the counter is at its maximum, so the thread wakes in any case.
    [[maybe_unused]] const ssize_t told = ::write(stop_.get(), &one, sizeof one);
  }

  void run() const {
    // Subscribe before the first query, so that no change is missed.
    const FileDescriptor changes = openRouteChanges();
    auto status = currentNetworkStatus();
    reporter_->report(status.value_or(NetworkStatus::satisfied));
    if (!changes || !stop_ || !status) return;
    while (waitForChange(changes)) {
      discardRouteChanges(changes);
      const auto next = currentNetworkStatus();
      if (!next || next == status) continue;
      status = next;
      reporter_->report(*status);
    }
  }

 private:
  // False when the subscription has ended.
  [[nodiscard]] bool waitForChange(const FileDescriptor& changes) const {
    std::array<pollfd, 2> sources{pollfd{stop_.get(), POLLIN, 0}, pollfd{changes.get(), POLLIN, 0}};
    while (::poll(sources.data(), sources.size(), forEver) < 0) {
    }
    if (sources[0].revents != 0) return false;
    return ::poll(sources.data(), 1, burstMilliseconds) <= 0;
  }

  std::shared_ptr<NetworkReporter> reporter_;
  FileDescriptor stop_{::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)};
};

class Subscription : public NetworkSubscription {
 public:
  explicit Subscription(std::shared_ptr<NetworkReporter> reporter)
      : watch_(std::make_shared<Watch>(std::move(reporter))),
        thread_("quillon-route", [watch = watch_] { watch->run(); }) {}
  ~Subscription() override { watch_->close(); }

 private:
  std::shared_ptr<Watch> watch_;
  WorkerThread thread_;
};

}  // namespace

std::unique_ptr<NetworkSubscription> NetlinkPathMonitor::start(std::shared_ptr<Executor> queue,
                                                               std::function<void(NetworkStatus)> handler) {
  return std::make_unique<Subscription>(std::make_shared<NetworkReporter>(std::move(queue), std::move(handler)));
}

}  // namespace quillon
