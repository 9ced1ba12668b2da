// The files of receiver/deploy, as the programs that read them see them.
#include <gtest/gtest.h>
#include <httplib.h>
#include <signal.h>

#include <cstdlib>
#include <filesystem>

#include "tests/receiver/Servers.h"
#include "tests/receiver/UploadBody.h"
#include "tests/support/Contains.h"
#include "tests/support/Effort.h"

namespace quillon::test {
namespace {

namespace fs = std::filesystem;

struct DeployTest : testing::Test {
  void SetUp() override {
    if (std::system("command -v systemd-analyze >/dev/null") != 0) GTEST_SKIP() << "systemd is not installed";
    // As they are installed, with the program of this build in its place.
    fs::create_directories(units);
    fs::create_directories(folder.path() / "usr/bin");
    fs::copy(QUILLON_RECEIVER_PROGRAM, folder.path() / "usr/bin/quillon-receiver");
    for (const auto& file : fs::directory_iterator(QUILLON_SOURCE "/receiver/deploy")) {
      if (file.path().extension() != ".conf") fs::copy(file.path(), units / file.path().filename());
    }
  }
  const TemporaryFolder folder{TemporaryFolder::fastParent()};
  const fs::path units = folder.path() / "etc/systemd/system";
};

TEST_F(DeployTest, UnitsAreSoundForSystemd) {
  for (const auto* unit : {"quillon-receiver-expire.service", "quillon-receiver@.service"}) {
    const std::string report = outputOf("systemd-analyze verify --root=" + folder.path().string() + " --man=no " +
                                        unit + " 2>&1 | grep -v -e 'Unit .*not found' -e sysinit -e basic || true");
    for (const auto* complaint : {"Unknown", "Failed to parse", "not executable", "ignoring", "Invalid"}) {
      EXPECT_FALSE(contains(report, complaint));
    }
  }
}

TEST_F(DeployTest, TheServiceIsExposedAsLittleAsSystemdCanMakeIt) {
  const std::string report = outputOf("systemd-analyze security --offline=true --threshold=20 " +
                                      (units / "quillon-receiver@.service").string() + " | tail -3");
  EXPECT_TRUE(contains(report, "OK")) << report;
}

// No systemd runs where tests do, so the calls are watched and held to its list.
TEST_F(DeployTest, TheReceiverMakesNoSystemCallThatItsUnitForbids) {
  if (isSanitized) GTEST_SKIP() << "a sanitizer makes calls of its own";
  if (std::system("command -v strace >/dev/null") != 0) GTEST_SKIP() << "strace is not installed";
  std::vector<std::string> stores{folder.path() / "store"};
  if (PostgresServer::isInstalled()) stores.push_back(sharedPostgres().newDatabase("sandbox"));
  for (const auto& store : stores) {
    const std::string trace = folder.path() / "trace";
    const int port = freePort();
    {
      ServerProcess traced({"strace", "-f", "-qq", "-o", trace, QUILLON_RECEIVER_PROGRAM, "--store", store,
                            "--any-token", "--listen", "127.0.0.1:" + std::to_string(port)});
      ASSERT_NE(traced.waitForLine("store opened"), "") << traced.output();
      const auto answer = httplib::Client("127.0.0.1", port)
                              .Post("/vantari/v1/consent/mobile/singleupload", {{"X-Auth-Token", "t"}},
                                    uploadBody("s", {{}}), "application/json");
      EXPECT_TRUE(answer && answer->status == 200);
      traced.sendSignalToChildren(SIGTERM);  // the receiver, not the one who watches it
      EXPECT_EQ(traced.wait(), 0);
    }
    const std::string verdict = outputOf("python3 " QUILLON_SOURCE "/tests/receiver/check_system_calls.py " +
                                         (units / "quillon-receiver@.service").string() + " " + trace);
    EXPECT_TRUE(verdict.ends_with("0 forbidden\nstatus 0")) << verdict;
  }
}

}  // namespace
}  // namespace quillon::test
