// Instances and the database are killed while devices upload: what is acknowledged is there, once, and nothing else is.
#include <gtest/gtest.h>
#include <httplib.h>
#include <signal.h>

#include <algorithm>
#include <atomic>
#include <boost/json.hpp>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <random>
#include <set>
#include <thread>

#include "receiver/store/DecisionStore.h"
#include "tests/receiver/Servers.h"
#include "tests/receiver/UploadBody.h"
#include "tests/support/Contains.h"
#include "tests/support/Effort.h"

namespace quillon::test {
namespace {

using namespace std::chrono_literals;

// More for a longer run.
int fromEnvironment(const char* name, int otherwise) {
  const char* const value = std::getenv(name);
  return value == nullptr ? otherwise : std::atoi(value);
}

// Two instances on one PostgreSQL behind nginx, and somebody who kills one of them now and then.
struct KillTest : testing::Test {
  void SetUp() override {
    if (!PostgresServer::isInstalled() || !NginxServer::isInstalled()) GTEST_SKIP() << "PostgreSQL or nginx is missing";
    postgres.emplace();
    store = postgres->address();
    ports = {freePort(), freePort()};
    for (std::size_t i = 0; i < 2; ++i) startReceiver(i);
    nginx.emplace(QUILLON_SAMPLE_SITE, ports[0], ports[1], NginxServer::Tls::off);
    // The library's own statics are made here: the thread sanitizer does not see how it guards them.
    (void)httplib::Client("127.0.0.1", nginx->appPort()).Get("/");
  }
  void startReceiver(std::size_t index) { receivers[index].emplace(store, std::vector<std::string>{}, ports[index]); }
  // Kills one after the other for as long as it may. Each victim comes back at once.
  void killAtRandom(std::chrono::milliseconds pause, const std::function<bool()>& mayGoOn) {
    std::mt19937 random(21);
    while (mayGoOn()) {
      std::this_thread::sleep_for(pause * std::uniform_int_distribution(5, 15)(random) / 10);
      const auto victim = std::uniform_int_distribution<std::size_t>(0, 2)(random);
      if (victim == 2) {
        postgres->kill();
        postgres->start();
      } else {
        receivers[victim]->process().sendSignal(SIGKILL);
        startReceiver(victim);
      }
      ++killed[victim];
    }
  }

  std::optional<PostgresServer> postgres;
  std::string store;
  std::array<int, 2> ports{};
  std::array<std::optional<ReceiverProcess>, 2> receivers;
  std::optional<NginxServer> nginx;
  std::array<int, 3> killed{};  // the instances, the database
};

// A device that decides, uploads until it is acknowledged, and now and then sends an old upload once more.
struct HastyDevice {
  explicit HastyDevice(int number)
      : subject("device-" + std::to_string(number)), random(static_cast<unsigned>(number)) {}

  void run(int port, const std::atomic<bool>& mayEnd, int least) {
    httplib::Client client("127.0.0.1", port);
    client.set_keep_alive(true);
    for (int i = 0; i < least || !mayEnd; ++i) {
      std::vector<PurposeAnswer> answers;
      for (int purpose = 1; purpose <= 3; ++purpose) {
        answers.push_back(
            {purpose, std::uniform_int_distribution(0, 1)(random) == 0 ? "granted" : "declined", 1000 + i});
        decided.insert(std::to_string(purpose) + " " + answers.back().status + " " + std::to_string(1000 + i));
      }
      bodies.push_back(uploadBody(subject, answers));
      deliver(client, bodies.back());
      if (i % 3 == 0) deliver(client, bodies[std::uniform_int_distribution<std::size_t>(0, bodies.size() - 1)(random)]);
    }
  }

  void deliver(httplib::Client& client, const std::string& body) {
    const auto deadline = std::chrono::steady_clock::now() + 60s;
    while (std::chrono::steady_clock::now() < deadline) {
      const auto answer =
          client.Post("/vantari/v1/consent/mobile/singleupload", {{"X-Auth-Token", "t"}}, body, "application/json");
      if (answer && answer->status == 200) return;
      ++refused;
      std::this_thread::sleep_for(20ms);
    }
    ADD_FAILURE() << "not delivered within a minute";
  }

  const std::string subject;
  std::mt19937 random;
  std::vector<std::string> bodies;
  std::set<std::string> decided;
  int refused = 0;
};

TEST_F(KillTest, EveryAcknowledgedDecisionIsThereOnceAndNoOther) {
  std::vector<HastyDevice> devices;
  for (int number = 0; number < 8; ++number) devices.emplace_back(number);
  std::atomic<bool> isOver = false;
  {
    std::vector<std::jthread> threads;
    for (auto& device : devices) threads.emplace_back([&] { device.run(nginx->appPort(), isOver, 20); });
    int kills = fromEnvironment("QUILLON_KILLS", 12);
    killAtRandom(250ms, [&] { return kills-- > 0; });
    isOver = true;
  }
  const auto opened = receiver::openStore(store);
  ASSERT_TRUE(opened) << opened.error().text;
  int refused = 0;
  for (const auto& device : devices) {
    const auto history = (*opened)->history({device.subject}).value();
    std::set<std::string> kept;
    for (const auto& entry : history) kept.insert(decisionOf(entry));
    EXPECT_EQ(kept.size(), history.size());
    EXPECT_EQ(kept, device.decided) << device.subject;
    refused += device.refused;
  }
  std::printf("%d times refused or lost; killed %d and %d times, database %d\n", refused, killed[0], killed[1],
              killed[2]);
  for (const auto& times : killed) EXPECT_GT(times, 0);
}

// Complete SDKs on a virtual clock, which says by a file when the hours of the faults begin and end.
TEST_F(KillTest, DevicesOfAFleetHaveTheirPresentAnswersAtTheServer) {
  const int devices = fromEnvironment("QUILLON_FLEET_DEVICES", isSanitized ? 15 : 80);
  const TemporaryFolder folder(TemporaryFolder::fastParent());
  const std::string statuses = folder.path() / "statuses";
  const std::string faults = folder.path() / "faults";
  ServerProcess fleet({QUILLON_FLEET, "--devices=" + std::to_string(devices), "--hours=36", "--changes=6",
                       "--outage=10", "--outage-at=1", "--outage-file=" + faults, "--statuses=" + statuses,
                       "--cdn=" + nginx->cdnUrl(), "--app=" + nginx->appUrl(), "--tenant=demo-tenant",
                       "--app-id=news-reader"});
  while (!std::filesystem::exists(faults) && !fleet.hasEnded()) std::this_thread::sleep_for(1ms);
  killAtRandom(300ms, [&] { return std::filesystem::exists(faults); });
  // Its day is seconds of ours: it waits until all is well again.
  fleet.sendSignal(SIGSTOP);
  for (const int port : ports) {
    while (httplib::Client("127.0.0.1", port).Get("/health")->status != 200) std::this_thread::sleep_for(10ms);
  }
  fleet.sendSignal(SIGCONT);
  EXPECT_EQ(fleet.wait(std::chrono::minutes(30)), 0) << fleet.output();
  const auto opened = receiver::openStore(store);
  ASSERT_TRUE(opened) << opened.error().text;

  std::istringstream lines(fileBytes(statuses));
  std::size_t checked = 0;
  for (std::string line; std::getline(lines, line);) {
    const auto device = boost::json::parse(line).as_object();
    const std::string subject(device.at("subject").as_string());
    boost::json::object newest;
    const auto history = (*opened)->history({subject}).value();
    for (const auto& entry : history) {
      const auto& decision = entry.decisions.front();
      if (decision.kind == receiver::Kind::purpose) newest[decision.item] = textOf(decision.status);
    }
    EXPECT_EQ(newest, device.at("purposes")) << subject;
    checked += newest.size();
  }
  std::printf("%s\n%zu purposes compared; killed %d and %d times, database %d\n", fleet.output().c_str(), checked,
              killed[0], killed[1], killed[2]);
  EXPECT_GT(checked, 0u);
}

}  // namespace
}  // namespace quillon::test
