// A small fleet against real servers: four hours of ten devices, one hour of it without servers.
#include <gtest/gtest.h>

#include <sys/wait.h>

#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

#include "tests/support/Contains.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/tools/ToolProcess.h"

namespace quillon::test {
namespace {

const std::vector<std::string> fourHours{"--devices", "10",       "--changes", "4",           "--hours",
                                         "4",         "--outage", "1",         "--outage-at", "2"};
constexpr std::string_view nothingWrong = "missing 0, different 0; repeated 0, unknown 0, not as chosen 0";

// The part of the report that accounts for the decisions.
std::string accountOf(const std::string& report) {
  const auto begin = report.find("decisions ");
  return begin == std::string::npos ? "none in: " + report : report.substr(begin, report.find('\n', begin) - begin);
}

struct Report {
  int status;
  std::string output;
};

struct FleetTest : testing::Test {
  // Against the development server alone; what it writes about so few requests fits into the pipe unread.
  Report runAgainstServe(const std::string& outageOf) {
    const std::string database = folder.path() / "uploads.db";
    ToolProcess server({"serve", QUILLON_SAMPLE_SITE, "--port", "0", "--db", database});
    const std::string url = server.readLine().value_or("").substr(std::string("listening on ").size());
    return run(QUILLON_FLEET " --cdn " + url + " --app " + url +
               " --tenant demo-tenant --app-id news-reader --outage-of " + outageOf + " --uploads " + database);
  }

  // Behind a real web server.
  Report runAgainstWebServer(const std::vector<std::string>& options = fourHours) {
    return run(QUILLON_FLEET_SCRIPT " " QUILLON_PROGRAMS " " QUILLON_SAMPLE_SITE " demo-tenant news-reader", options);
  }

  Report run(std::string command, const std::vector<std::string>& options = fourHours) {
    for (const auto& option : options) command += " " + option;
    const auto file = folder.path() / "report";
    const int status = std::system((command + " >" + file.string()).c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, fileBytes(file)};
  }

  const TemporaryFolder folder{TemporaryFolder::fastParent()};
};

TEST_F(FleetTest, EveryDecisionReachesTheServerOnceAfterAnOutage) {
  const auto first = runAgainstServe("network");
  EXPECT_EQ(first.status, 0);
  EXPECT_TRUE(contains(accountOf(first.output), nothingWrong));
  EXPECT_TRUE(accountOf(first.output).starts_with("decisions 100, ")) << first.output;

  // The same devices decide the same at the same times: the server now has it twice, and the account must say so.
  const auto second = runAgainstServe("servers");
  EXPECT_EQ(second.status, 1);
  EXPECT_FALSE(contains(accountOf(second.output), "repeated 0"));
}

TEST_F(FleetTest, ARegionThatComesBackDoesNotArriveInOneSecond) {
  constexpr int devices = 240;
  constexpr int backAt = 4500;
  if (std::system("command -v nginx >/dev/null") != 0) GTEST_SKIP() << "nginx is not installed";
  const std::string file = folder.path() / "seconds";
  const auto report = runAgainstWebServer({"--devices", std::to_string(devices), "--hours", "1.5", "--outage", "0.25",
                                           "--outage-at", "1", "--outage-of", "network", "--seconds", file});
  EXPECT_EQ(report.status, 0) << report.output;
  std::istringstream lines(fileBytes(file));
  std::string line;
  std::getline(lines, line);
  int second = 0;
  int checks = 0;
  int checksInAMinute = 0;
  char comma = 0;
  while (std::getline(lines, line)) {
    std::istringstream(line) >> second >> comma >> checks;
    if (second < backAt) continue;
    EXPECT_LE(checks, devices / 20) << "at " << second << " s";
    if (second <= backAt + 60) checksInAMinute += checks;
  }
  EXPECT_GE(checksInAMinute, devices / 3) << "the others have a fresh document";
}

TEST_F(FleetTest, EveryDecisionPassesAWebServerThatRefusesForAnHour) {
  if (std::system("command -v nginx >/dev/null") != 0) GTEST_SKIP() << "nginx is not installed";
  const auto report = runAgainstWebServer();
  EXPECT_EQ(report.status, 0);
  EXPECT_TRUE(contains(accountOf(report.output), nothingWrong));
  EXPECT_TRUE(contains(report.output, " 503: "));
}

}  // namespace
}  // namespace quillon::test
