// Uploads acknowledged by the receiver, compared with pgbench's single inserts of the same rows; their growth with
// stored decisions; and the cost of a thousand slow clients.
#include <arpa/inet.h>
#include <benchmark/benchmark.h>
#include <sqlite3.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "bench/Expectation.h"
#include "bench/receiver/LoadGenerator.h"
#include "receiver/store/DecisionStore.h"
#include "receiver/store/PostgresConnection.h"
#include "tests/support/PostgresServer.h"
#include "tests/support/ServerProcess.h"

namespace quillon::bench {
namespace {

namespace fs = std::filesystem;

// On a real disk, where commits have their real cost.
const fs::path kDisk = "/var/tmp";

test::PostgresServer& postgres() {
  static test::PostgresServer server(kDisk);
  static const bool hasTable = receiver::openStore(server.address()).has_value();
  (void)hasTable;
  return server;
}

class Receiver {
 public:
  explicit Receiver(const std::string& store)
      : process_({QUILLON_RECEIVER_PROGRAM, "--store", store, "--any-token", "--listen", "127.0.0.1:0"}) {
    const std::string line = process_.waitForLine("\"listening\"");
    process_.waitForLine("\"store opened\"");
    port_ = std::atoi(line.c_str() + line.rfind(':') + 1);
  }
  int port() const { return port_; }
  // Private memory in kilobytes, as reported by the kernel.
  double residentKilobytes() const {
    std::ifstream status("/proc/" + std::to_string(process_.id()) + "/status");
    for (std::string line; std::getline(status, line);) {
      if (line.starts_with("RssAnon:")) return std::atof(line.c_str() + 8);
    }
    return 0;
  }

 private:
  test::ServerProcess process_;
  int port_ = 0;
};

void measureUploads(benchmark::State& state, int port, int clients) {
  for (auto _ : state) {
    const auto result = uploadTo(port, {.clients = clients});
    if (result.failed > 0) return state.SkipWithError("uploads were refused");
    state.counters["a second"] = static_cast<double>(result.acknowledged) / result.seconds;
  }
}

// pgbench's rate of single inserts into the same table, over the same socket.
void measurePgbench(benchmark::State& state, int clients) {
  const test::TemporaryFolder folder(kDisk);
  test::setFileBytes(folder.path() / "script",
                     "\\set id random(1, 9000000000000000000)\n"
                     "INSERT INTO quillon_decisions(subject, tenant, application, kind, item, decided_at, status, "
                     "essential, implicit, test, version, compliance, place, device, sdk_version, ad_id, received_at, "
                     "cause, history_head) "
                     "VALUES ('device-' || :id::text, '', 'reader', 'purpose', '2', 1700000000, 'granted', 0, 0, 0, 3, "
                     "'opt-in', '', 'Linux', '', '', 1700000000, '', '') ON CONFLICT DO NOTHING;\n");
  const std::string output = folder.path() / "output";
  const std::string command = test::postgresPrograms() + "pgbench -n -M prepared -T 3 -j 1 -c " +
                              std::to_string(clients) + " -f " + (folder.path() / "script").string() + " '" +
                              postgres().address() + "' >" + output + " 2>&1";
  for (auto _ : state) {
    const int status = std::system(command.c_str());
    const std::string report = test::fileBytes(output);
    const auto at = report.find("tps = ");
    if (status != 0 || at == std::string::npos) return state.SkipWithError(report.c_str());
    state.counters["a second"] = std::atof(report.c_str() + at + 6);
  }
}

// Fills an empty store with decisions in key order, using the database.
void fill(const std::string& store, std::int64_t count) {
  const std::string columns =
      "INSERT INTO quillon_decisions(subject, tenant, application, kind, item, decided_at, status, essential, "
      "implicit, "
      "test, version, compliance, place, device, sdk_version, ad_id, received_at) ";
  const std::string values =
      ", '', 'reader', 'purpose', '2', 1700000000, 'granted', 0, 0, 0, 3, 'opt-in', '', 'Linux', '', '', 1700000000 ";
  // Spaced numbers, so that uploads' numbers fall in between.
  const std::string apart = std::to_string(INT64_MAX / count);
  if (receiver::isPostgres(store)) {
    const auto connection = receiver::PostgresConnection::open(store).value();
    const auto run = [&](const std::string& sql) { (void)connection->execute(sql, {}, {}).value(); };
    run(columns + "SELECT 'device-' || lpad((i * " + apart + ")::text, 20, '0')" + values +
        "FROM generate_series(0::bigint, " + std::to_string(count - 1) + "::bigint) i");
    run("VACUUM ANALYZE quillon_decisions");
    run("CHECKPOINT");
    return;
  }
  sqlite3* database = nullptr;
  sqlite3_open((store + "/decisions.db").c_str(), &database);
  const std::string sql = "WITH RECURSIVE n(i) AS (SELECT 0 UNION ALL SELECT i + 1 FROM n WHERE i < " +
                          std::to_string(count - 1) + ") " + columns + "SELECT printf('device-%020d', i * " + apart +
                          ")" + values + "FROM n";
  sqlite3_exec(database, sql.c_str(), nullptr, nullptr, nullptr);
  sqlite3_exec(database, "PRAGMA wal_checkpoint(TRUNCATE)", nullptr, nullptr, nullptr);
  sqlite3_close(database);
}

// A receiver with a store of `decisions`. Repetitions come in any order, so each size has its own store.
const Receiver& receiverWith(bool isPostgres, std::int64_t decisions) {
  static const test::TemporaryFolder folder(kDisk);
  static std::map<std::pair<bool, std::int64_t>, std::unique_ptr<Receiver>> receivers;
  auto& receiver = receivers[{isPostgres, decisions}];
  if (!receiver) {
    const std::string name = "growth" + std::to_string(decisions);
    const std::string store = isPostgres ? postgres().newDatabase(name) : (folder.path() / name).string();
    (void)receiver::openStore(store).value();
    fill(store, decisions);
    receiver = std::make_unique<Receiver>(store);
  }
  return *receiver;
}

void measureGrowth(benchmark::State& state, bool isPostgres, std::int64_t decisions) {
  measureUploads(state, receiverWith(isPostgres, decisions).port(), 64);
}

// Clients that sent half a body and then stopped.
void measureSlowClients(benchmark::State& state, int count) {
  const test::TemporaryFolder folder(kDisk);
  const Receiver receiver(folder.path() / "store");
  (void)uploadTo(receiver.port(), {.clients = 64, .duration = std::chrono::milliseconds(500)});
  const double before = receiver.residentKilobytes();
  for (auto _ : state) {
    std::vector<int> sockets;
    const std::string half =
        "POST /vantari/v1/consent/mobile/singleupload HTTP/1.1\r\nHost: x\r\nX-Auth-Token: t\r\nContent-Length: "
        "1000000\r\n"
        "\r\n{" +
        std::string(2000, ' ');
    for (int i = 0; i < count; ++i) {
      const int one = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
      sockaddr_in address{};
      address.sin_family = AF_INET;
      address.sin_port = htons(static_cast<std::uint16_t>(receiver.port()));
      address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
      if (connect(one, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
          send(one, half.data(), half.size(), MSG_NOSIGNAL) < 0) {
        state.SkipWithError("a slow client was not taken");
      }
      sockets.push_back(one);
    }
    // Other clients are served meanwhile, after all of the above has been read.
    const auto others = uploadTo(receiver.port(), {.clients = 8, .duration = std::chrono::milliseconds(2000)});
    if (others.acknowledged == 0) return state.SkipWithError("nobody else is answered");
    state.counters["kilobytes for all"] = receiver.residentKilobytes() - before;
    state.counters["answers a second to others"] = static_cast<double>(others.acknowledged) / others.seconds;
    for (const int one : sockets) close(one);
  }
}

const bool registered = [] {
  const auto add = [](const std::string& name, auto function, int repetitions) {
    benchmark::RegisterBenchmark(name.c_str(), function)
        ->Iterations(1)
        ->Repetitions(repetitions)
        ->ReportAggregatesOnly()
        ->UseRealTime()
        ->Unit(benchmark::kMillisecond);
  };
  for (const int clients : {1, 8, 64}) {
    const std::string with = "/" + std::to_string(clients) + " clients";
    add(
        "receiver/PostgreSQL" + with,
        [clients](benchmark::State& state) {
          static const Receiver receiver(postgres().address());
          measureUploads(state, receiver.port(), clients);
        },
        3);
    add("receiver/pgbench" + with, [clients](benchmark::State& state) { measurePgbench(state, clients); }, 3);
    add(
        "receiver/SQLite" + with,
        [clients](benchmark::State& state) {
          static const test::TemporaryFolder folder(kDisk);
          static const Receiver receiver(folder.path() / "store");
          measureUploads(state, receiver.port(), clients);
        },
        3);
    expectAtMost({"receiver: pgbench's single inserts against acknowledged uploads," + with.substr(1),
                  {"receiver/pgbench" + with, "a second"},
                  Figure{"receiver/PostgreSQL" + with, "a second"},
                  clients == 64 ? 1.0 : 2.0});
  }
  for (const bool isPostgres : {false, true}) {
    const std::string stem = std::string("receiver growth/") + (isPostgres ? "PostgreSQL" : "SQLite") + "/";
    for (const std::int64_t decisions : {10'000LL, 100'000LL, 1'000'000LL, 10'000'000LL}) {
      add(
          stem + std::to_string(decisions),
          [isPostgres, decisions](benchmark::State& state) { measureGrowth(state, isPostgres, decisions); }, 3);
    }
    expectAtMost({stem + "uploads a second with ten thousand decisions against with ten million",
                  {stem + "10000", "a second"},
                  Figure{stem + "10000000", "a second"},
                  2.0});
  }
  for (const int clients : {1, 1000}) {
    add(
        "receiver memory/" + std::to_string(clients) + " slow clients",
        [clients](benchmark::State& state) { measureSlowClients(state, clients); }, 3);
  }
  expectAtMost({"receiver: kilobytes for 1000 slow clients",
                {"receiver memory/1000 slow clients", "kilobytes for all"},
                std::nullopt,
                32'000});
  return true;
}();

}  // namespace
}  // namespace quillon::bench
