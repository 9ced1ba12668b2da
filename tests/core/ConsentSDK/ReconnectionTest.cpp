#include <gtest/gtest.h>

#include <condition_variable>
#include <mutex>

#include "platform/linux/NetlinkPathMonitor.h"
#include "tests/support/OwnNetwork.h"
#include "tests/support/World.h"

namespace quillon::test {
namespace {

// The real monitor; tells what it has reported once its handler is done with it.
class WatchedMonitor : public NetworkPathMonitor {
 public:
  std::unique_ptr<NetworkSubscription> start(std::shared_ptr<Executor> queue,
                                             std::function<void(NetworkStatus)> handler) override {
    return real_.start(std::move(queue), [this, handler = std::move(handler)](NetworkStatus status) {
      handler(status);
      const std::scoped_lock lock(mutex_);
      last_ = status;
      changed_.notify_all();
    });
  }
  bool waitFor(NetworkStatus status) {
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, std::chrono::seconds(10), [&] { return last_ == status; });
  }

 private:
  NetlinkPathMonitor real_;
  std::mutex mutex_;
  std::condition_variable changed_;
  std::optional<NetworkStatus> last_;
};

TEST_F(OwnNetwork, PendingUploadFollowsByItselfWhenTheRouteComesBack) {
  inOwnNetwork([] {
    ASSERT_TRUE(run("ip link set lo up && ip addr add 192.0.2.2/24 dev d0 && ip link set d0 up"));
    ASSERT_TRUE(run("ip route add default via 192.0.2.1"));
    const auto monitor = std::make_shared<WatchedMonitor>();
    World world;
    world.amend = [&](Platform& platform) { platform.network = monitor; };
    world.start();
    ASSERT_TRUE(monitor->waitFor(NetworkStatus::satisfied));
    ASSERT_TRUE(run("ip route del default"));
    ASSERT_TRUE(monitor->waitFor(NetworkStatus::unsatisfied));
    world.server.onUpload(json("{}", 503));
    ASSERT_TRUE(world.sdk->acceptOrReject(true).get());
    ASSERT_FALSE(world.stored().pendingPurposes().empty());

    world.server.onUpload(json(R"({"status":0,"message":"saved"})"));
    ASSERT_TRUE(run("ip route add default via 192.0.2.1"));
    ASSERT_TRUE(world.server.waitFor(uploadPath, 2));
    world.sdk->settled().wait();
    EXPECT_TRUE(world.stored().pendingPurposes().empty());
    world.sdk.reset();
  });
}

}  // namespace
}  // namespace quillon::test
