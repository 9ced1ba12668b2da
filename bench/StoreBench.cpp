// What a consent costs to read and to record, beside bare SQLite on the same disk in the same journal mode.
#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include <memory>
#include <stdexcept>
#include <string>

#include "bench/AllocationCount.h"
#include "bench/Ratio.h"
#include "bench/TemporaryFolder.h"
#include "platform/linux/LinuxPlatform.h"
#include "platform/memory/MemoryConsole.h"
#include "platform/memory/VirtualClock.h"
#include "quillon/ConsentSDK.h"

namespace quillon::bench {
namespace {

constexpr int storedKeys = 300;

Purpose purpose(std::int64_t id) {
  Purpose result;
  result.purposeId = id;
  return result;
}

// An SDK whose clock stands still, so that nothing but the call under measurement happens.
struct Application {
  Application() {
    Platform platform = linuxPlatform({.applicationId = "bench", .dataDirectory = folder.path() / "data"});
    platform.clock = std::make_shared<VirtualClock>(WallTime(std::chrono::seconds(1'700'000'000)));
    platform.console = std::make_shared<MemoryConsole>();
    sdk = std::make_unique<ConsentSDK>(std::move(platform));
    for (int id = 1; id <= storedKeys; ++id) sdk->set(purpose(id), ConsentStatus::granted);
  }
  TemporaryFolder folder;
  std::unique_ptr<ConsentSDK> sdk;
};

// Of about the length of what the SDK keeps of a decision.
const std::string recordText(240, 'x');

// A table of as many keys as the SDK's store holds, and one of records.
struct Sqlite {
  Sqlite() {
    check(sqlite3_open((folder.path() / "bare.sqlite").c_str(), &database));
    run("PRAGMA journal_mode=TRUNCATE; PRAGMA synchronous=FULL;"
        "CREATE TABLE entries(key TEXT PRIMARY KEY, value TEXT) WITHOUT ROWID;"
        "CREATE TABLE records(number INTEGER PRIMARY KEY, text TEXT); BEGIN");
    append = prepare("INSERT INTO records(text) VALUES(?1)");
    insert = prepare("INSERT INTO entries VALUES(?1, ?2) ON CONFLICT(key) DO UPDATE SET value = ?2");
    for (int id = 1; id <= storedKeys; ++id) write(id, "granted");
    run("COMMIT");
    select = prepare("SELECT value FROM entries WHERE key = ?1");
  }
  ~Sqlite() {
    sqlite3_finalize(insert);
    sqlite3_finalize(select);
    sqlite3_finalize(append);
    sqlite3_close(database);
  }

  void run(const char* statement) { check(sqlite3_exec(database, statement, nullptr, nullptr, nullptr)); }
  void write(int id, const char* value) {
    const std::string key = std::to_string(id);
    sqlite3_bind_text(insert, 1, key.data(), static_cast<int>(key.size()), SQLITE_STATIC);
    sqlite3_bind_text(insert, 2, value, -1, SQLITE_STATIC);
    if (sqlite3_step(insert) != SQLITE_DONE) throw std::runtime_error(sqlite3_errmsg(database));
    sqlite3_reset(insert);
  }
  void record() {
    sqlite3_bind_text(append, 1, recordText.data(), static_cast<int>(recordText.size()), SQLITE_STATIC);
    if (sqlite3_step(append) != SQLITE_DONE) throw std::runtime_error(sqlite3_errmsg(database));
    sqlite3_reset(append);
  }
  bool isGranted(int id) {
    const std::string key = std::to_string(id);
    sqlite3_bind_text(select, 1, key.data(), static_cast<int>(key.size()), SQLITE_STATIC);
    const bool granted = sqlite3_step(select) == SQLITE_ROW &&
                         std::string_view(reinterpret_cast<const char*>(sqlite3_column_text(select, 0))) == "granted";
    sqlite3_reset(select);
    return granted;
  }

  sqlite3_stmt* prepare(const char* text) {
    sqlite3_stmt* statement = nullptr;
    check(sqlite3_prepare_v2(database, text, -1, &statement, nullptr));
    return statement;
  }
  void check(int code) const {
    if (code != SQLITE_OK) throw std::runtime_error(sqlite3_errmsg(database));
  }

  TemporaryFolder folder;
  sqlite3* database = nullptr;
  sqlite3_stmt* insert = nullptr;
  sqlite3_stmt* select = nullptr;
  sqlite3_stmt* append = nullptr;
};

void readConsent(benchmark::State& state) {
  const Application application;
  std::int64_t id = 0;
  const AllocationCount count;
  for (auto _ : state) benchmark::DoNotOptimize(application.sdk->get(++id % storedKeys + 1));
  state.counters["allocated"] = static_cast<double>(count.peak());
}

void readSqlite(benchmark::State& state) {
  Sqlite sqlite;
  int id = 0;
  for (auto _ : state) benchmark::DoNotOptimize(sqlite.isGranted(++id % storedKeys + 1));
}

void recordDecision(benchmark::State& state) {
  const Application application;
  bool granted = true;
  for (auto _ : state) {
    granted = !granted;
    if (!application.sdk->set(purpose(7), granted ? ConsentStatus::granted : ConsentStatus::declined)) {
      state.SkipWithError("not stored");
    }
  }
}

void commitSqlite(benchmark::State& state) {
  Sqlite sqlite;
  bool granted = true;
  for (auto _ : state) {
    granted = !granted;
    sqlite.run("BEGIN IMMEDIATE");
    sqlite.write(7, granted ? "granted" : "declined");
    sqlite.record();
    sqlite.run("COMMIT");
  }
}

BENCHMARK(readConsent)->Name("read/sdk")->Repetitions(9);
BENCHMARK(readSqlite)->Name("read/sqlite select")->Repetitions(9);
BENCHMARK(recordDecision)->Name("decision/sdk")->Repetitions(9)->UseRealTime();
BENCHMARK(commitSqlite)->Name("decision/sqlite commit")->Repetitions(9)->UseRealTime();

const bool registered =
    expectRatio(
        {"read of one consent: SDK vs a prepared SQLite SELECT", {"read/sdk"}, {"read/sqlite select"}, 1.0 / 30}) &&
    expectRatio({"durable decision: SDK vs one bare SQLite commit of as many rows",
                 {"decision/sdk"},
                 {"decision/sqlite commit"},
                 1.15});

}  // namespace
}  // namespace quillon::bench
