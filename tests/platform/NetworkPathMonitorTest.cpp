// Network path reports, in a network namespace of the test where permitted.
#include <gtest/gtest.h>
#include <sched.h>

#include <condition_variable>
#include <cstdlib>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "platform/linux/AsioExecutors.h"
#include "platform/linux/NetlinkPathMonitor.h"

namespace quillon {
namespace {

using namespace std::chrono_literals;
using Statuses = std::vector<NetworkStatus>;

constexpr auto satisfied = NetworkStatus::satisfied;
constexpr auto unsatisfied = NetworkStatus::unsatisfied;

// The reports to a subscriber, with a wait for more.
class Heard {
 public:
  void operator()(NetworkStatus status) {
    const std::lock_guard lock(mutex_);
    all_.push_back(status);
    changed_.notify_all();
  }

  // The first `count` reports, fewer on timeout.
  Statuses wait(std::size_t count) {
    std::unique_lock lock(mutex_);
    changed_.wait_for(lock, 10s, [&] { return all_.size() >= count; });
    return all_;
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  Statuses all_;
};

TEST(NetlinkPathMonitorTest, IsSilentOnceTheSubscriptionIsDropped) {
  AsioExecutors executors;
  NetlinkPathMonitor monitor;
  for (int round = 0; round < 50; ++round) {
    auto heard = std::make_unique<Heard>();
    auto subscription =
        monitor.start(executors.background(), [&target = *heard](NetworkStatus status) { target(status); });
    if (round % 2 == 0) {
      EXPECT_EQ(heard->wait(1).size(), 1u);
    }
    subscription.reset();
    heard.reset();  // a report now would access freed memory
  }
}

// Runs the body on a thread in its own network namespace.
class OwnNetwork : public testing::Test {
 protected:
  void inOwnNetwork(const std::function<void()>& body) {
    bool made = false;
    std::thread([&] {
      made = unshare(CLONE_NEWNET) == 0 && addLink("d0", "p0");
      if (made) body();
    }).join();
    if (!made) GTEST_SKIP() << "this system lets the test make no network (needs root and ip)";
  }

  // A veth pair: one end has a carrier while the other is up.
  static bool addLink(const std::string& link, const std::string& peer) {
    return run("ip link add " + link + " type veth peer name " + peer) && run("ip link set " + peer + " up");
  }

  static bool run(const std::string& command) { return std::system((command + " >/dev/null 2>&1").c_str()) == 0; }
};

TEST_F(OwnNetwork, IsSatisfiedWhileADefaultRouteLeavesThroughALinkThatIsUp) {
  inOwnNetwork([] {
    AsioExecutors executors;
    NetlinkPathMonitor monitor;
    Heard heard;
    const auto subscription = monitor.start(executors.serial("path"), [&](NetworkStatus status) { heard(status); });
    ASSERT_EQ(heard.wait(1), Statuses{unsatisfied});

    ASSERT_TRUE(run("ip addr add 192.0.2.2/24 dev d0") && run("ip link set d0 up"));
    ASSERT_TRUE(run("ip route add default via 192.0.2.1"));
    ASSERT_EQ(heard.wait(2), (Statuses{unsatisfied, satisfied}));

    // With a second route, losing the first does not matter; an unusable route does not count.
    ASSERT_TRUE(addLink("d1", "p1") && run("ip link set d1 up"));
    ASSERT_TRUE(run("ip route add default dev d1 metric 500") && run("ip route del default via 192.0.2.1"));
    ASSERT_TRUE(run("ip route add blackhole 0.0.0.0/0 metric 900") && run("ip link set d1 down"));
    ASSERT_EQ(heard.wait(3), (Statuses{unsatisfied, satisfied, unsatisfied}));

    // Only routes of the main table count.
    ASSERT_TRUE(run("ip route add default via 192.0.2.1 table 100"));
    Heard elsewhere;
    const auto other = monitor.start(executors.serial("other"), [&](NetworkStatus status) { elsewhere(status); });
    ASSERT_EQ(elsewhere.wait(1), Statuses{unsatisfied});
    ASSERT_TRUE(run("ip route add default nexthop via 192.0.2.1 nexthop via 192.0.2.3"));
    ASSERT_EQ(heard.wait(4).size(), 4u);
    ASSERT_TRUE(run("ip link set p0 down"));
    ASSERT_EQ(heard.wait(5).size(), 5u);
    ASSERT_TRUE(run("ip route del default") && run("ip -6 route add default dev d0") && run("ip link set p0 up"));
    ASSERT_EQ(heard.wait(6).back(), satisfied) << "the sixth version counts too";
  });
}

}  // namespace
}  // namespace quillon
