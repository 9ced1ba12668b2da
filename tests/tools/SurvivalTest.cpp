// A host that is killed again and again, against a server that fails every other time, loses no decision that it
// acknowledged.
#include <gtest/gtest.h>
#include <signal.h>

#include <algorithm>
#include <boost/json.hpp>
#include <map>
#include <mutex>
#include <random>
#include <set>
#include <string>

#include "tests/support/ConsentServer.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/World.h"
#include "tests/tools/ToolProcess.h"

namespace quillon::test {
namespace {

constexpr int rounds = 200;
constexpr int purposes = 3;
constexpr unsigned seed = 20261124;

// What the server recorded last for each purpose; it records what it answered with status 0.
class Records {
 public:
  void add(const std::string& body) {
    const auto upload = boost::json::parse(body);
    const std::scoped_lock lock(mutex_);
    for (const auto& consent : upload.at("purpose_consents").as_array()) {
      latest_[static_cast<int>(consent.at("purpose_id").as_int64())] = consent.at("consent_status").as_string().c_str();
    }
  }
  std::map<int, std::string> latest() const {
    const std::scoped_lock lock(mutex_);
    return latest_;
  }

 private:
  mutable std::mutex mutex_;
  std::map<int, std::string> latest_;
};

TEST(Survival, AcknowledgedDecisionsOutliveTwoHundredKills) {
  TemporaryFolder folder;
  ConsentServer server;
  Records records;
  std::atomic<int> requests = 0;
  std::atomic<bool> failing = true;
  auto document = validConfiguration();
  document["is_att_enabled"] = false;
  server.serve(boost::json::serialize(document));
  server.onUpload([&](const auto& request, auto& response) {
    if (failing && ++requests % 2 == 0) {
      response.status = 500;
      return;
    }
    records.add(request.body);
    json(R"({"status":0,"message":"saved"})")(request, response);
  });

  const auto start = [&] {
    auto host = std::make_unique<ToolProcess>(
        std::vector<std::string>{"host", "--data-dir", folder.path() / "data", "--vendor-url", server.url()},
        folder.path() / "errors");
    host->writeLine(R"({"op":"setup","tenantId":"t1","appId":"a1","locationCode":"DE","appUrl":")" + server.url() +
                    R"(","cdnUrl":")" + server.url() + "\"}");
    host->writeLine(R"({"op":"waitReady"})");
    EXPECT_TRUE(host->readLine() && host->readLine());
    return host;
  };
  const auto ask = [](ToolProcess& host, const std::string& line) {
    host.writeLine(line);
    return boost::json::parse(host.readLine().value_or("{}")).as_object();
  };

  std::mt19937 random(seed);
  const std::array<std::string, 3> statuses{"granted", "declined", "withdrawn"};
  // What each purpose may hold: the decision acknowledged last, and those sent after it whose answer was never read.
  std::map<int, std::set<std::string>> possible;
  for (int round = 0; round < rounds && !HasFailure(); ++round) {
    auto host = start();
    for (const auto& [id, values] : possible) {
      const auto answer = ask(*host, R"({"op":"get","purposeId":)" + std::to_string(id) + "}");
      ASSERT_TRUE(answer.contains("consent")) << boost::json::serialize(answer);
      const std::string found = answer.at("consent").as_string().c_str();
      ASSERT_TRUE(values.contains(found)) << "round " << round << ", purpose " << id << " holds " << found;
      possible[id] = {found};
    }
    std::vector<std::pair<int, std::string>> sent;
    const auto lines = 1 + random() % 6;
    for (unsigned i = 0; i < lines; ++i) {
      const int id = 1 + static_cast<int>(random() % purposes);
      const std::string& status = statuses[random() % statuses.size()];
      sent.emplace_back(id, status);
      host->writeLine(R"({"op":"set","purposeId":)" + std::to_string(id) + R"(,"consent":")" + status + "\"}");
      if (random() % 2 == 0) {
        sent.emplace_back(0, "");
        host->writeLine(R"({"op":"upload"})");
      }
    }
    // Killed in the middle: some answers are read, the rest never is.
    const auto acknowledged = random() % (sent.size() + 1);
    for (std::size_t i = 0; i < sent.size(); ++i) {
      const auto& [id, status] = sent[i];
      if (i < acknowledged) {
        const auto answer = host->readLine();
        ASSERT_TRUE(answer) << "round " << round;
        if (id != 0 && answer->find("\"stored\":true") != std::string::npos) possible[id] = {status};
      } else if (id != 0) {
        // An unread decision may or may not have been made; before the first one a purpose holds its default.
        if (possible[id].empty()) possible[id].insert("declined");
        possible[id].insert(status);
      }
    }
    host->sendSignal(SIGKILL);
    host->wait();
  }

  failing = false;
  auto host = start();
  EXPECT_EQ(ask(*host, R"({"op":"upload"})").at("uploaded"), true);
  const auto store = ask(*host, R"({"op":"store"})").at("store").as_object();
  EXPECT_TRUE(store.at("PENDING_PURPOSES_LIST").as_array().empty());
  for (int id = 1; id <= purposes; ++id) {
    const std::string stored = store.at(std::to_string(id)).as_string().c_str();
    EXPECT_TRUE(possible[id].contains(stored)) << "purpose " << id << " holds " << stored;
    EXPECT_EQ(records.latest().at(id), stored) << "on the server, purpose " << id;
  }
  EXPECT_GT(requests, rounds / 4) << "the server was hardly asked";
}

}  // namespace
}  // namespace quillon::test
