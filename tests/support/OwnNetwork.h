// A network of the test's own, where the system lets it make one.
#pragma once

#include <gtest/gtest.h>
#include <sched.h>

#include <cstdlib>
#include <functional>
#include <string>
#include <thread>

namespace quillon::test {

// Runs the body on a thread with a network of its own, in which nothing but it lives.
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

  // A cable with two ends: the one has a carrier while the other is up.
  static bool addLink(const std::string& link, const std::string& peer) {
    return run("ip link add " + link + " type veth peer name " + peer) && run("ip link set " + peer + " up");
  }

  static bool run(const std::string& command) { return std::system((command + " >/dev/null 2>&1").c_str()) == 0; }
};

}  // namespace quillon::test
