// A fault at every single system call, or allocation of SQLite's, in turn, while the SDK saves: afterwards the next
// process finds all acknowledged changes, and of others either the old or the new value.
#include <sqlite3.h>

#include <atomic>
#include <boost/json.hpp>

#include "core/Persistance/UserDefaults/StoreKeys.h"
#include "tests/faults/Row.h"
#include "tests/faults/SystemCalls.h"
#include "tests/platform/ChildProcess.h"

namespace quillon::test {
namespace {

// A process's output: its log with progress marks.
struct Said {
  std::string text;

  bool has(std::string_view part) const { return text.find(part) != std::string::npos; }
  bool acknowledged() const { return has("* acknowledged\n"); }
  bool isDone() const { return has("* done\n"); }
};

// A part of an application's run, which prints its acknowledgements.
struct Work {
  // Prepares without faults.
  void (*prepare)(World&);
  // Runs under faults; reports what the user or the server counts as done.
  void (*perform)(World&, const std::function<void()>& acknowledge);
  // Compares the next process's data with the acknowledgements.
  void (*check)(Trial&, World&, const Said& said, const std::string& where);
  bool opens = false;      // opens the store
  bool isDamaged = false;  // the store is damaged, and then set aside
};

constexpr Work savingAConfiguration{
    .prepare = [](World& world) { world.store(key::cdnCachedTimestamp, std::int64_t{1}); },
    .perform =
        [](World& world, const auto&) {
          auto newer = validConfiguration();
          newer["version"] = 6;
          world.server.serve(newer);
          world.start();
        },
    .check =
        [](Trial& trial, World& world, const Said&, const std::string& where) {
          world.server.onConfiguration(json("{}", 500));
          world.start();
          trial.expect(world.sdk->getStatus() == SDKStatus::ready, where + ": no configuration can be read");
          trial.expect(world.sdk->getPurposeConsents().get().size() == 3, where + ": the configuration lacks purposes");
          trial.expect(world.text("1") == "granted", where + ": an earlier decision is gone");
        },
};

constexpr Work opening{
    .prepare = [](World& world) { world.sdk.reset(); },
    .perform = [](World& world, const auto&) { world.start(); },
    .check =
        [](Trial& trial, World& world, const Said&, const std::string& where) {
          for (const auto* key : {"1", "2"}) {
            trial.expect(world.text(key) == "granted", where + ": an earlier decision is gone");
          }
        },
    .opens = true,
};

constexpr Work settingAside{
    .prepare =
        [](World& world) {
          world.sdk.reset();
          world.platform = {};
          setFileBytes(storeIn(world.data), "rubbish");
        },
    .perform = [](World& world, const auto&) { world.start(); },
    .check =
        [](Trial& trial, World& world, const Said&, const std::string& where) {
          trial.expect(world.stored().boolean(key::lostEntries), where + ": the loss is not known");
          trial.expect(world.sdk->get(99) == ConsentStatus::declined, where + ": granted after a loss");
        },
    .opens = true,
    .isDamaged = true,
};

constexpr Work decision{
    .prepare = [](World& world) { world.start(); },
    .perform =
        [](World& world, const auto& acknowledge) {
          if (world.sdk->set({.purposeId = 1}, ConsentStatus::withDrawn)) acknowledge();
        },
    .check =
        [](Trial& trial, World& world, const Said& said, const std::string& where) {
          const auto now = world.text("1");
          trial.expect(now == "withdrawn" || (!said.acknowledged() && now == "granted"),
                       where + (said.acknowledged() ? ": acknowledged" : ": refused") + ", and found " +
                           now.value_or("nothing"));
          trial.expect(said.acknowledged() || said.has("[ERROR]"), where + ": refused in silence");
          trial.expect(now != "withdrawn" || std::ranges::count(world.stored().pendingPurposes(), 1) > 0,
                       where + ": the decision would never be uploaded");
          trial.expect(world.text("2") == "granted", where + ": an earlier decision is gone");
        },
};

// The fault of a sweep: strikes call `number`, from 1, of those it counts.
struct Fault {
  std::function<void(const std::filesystem::path& data, int number)> strike;
  bool (*restore)();  // ends it; true when it has struck
};

// Allocations until the failing one; no fault when not positive.
std::atomic<int> allocationsLeft{0};
std::atomic<bool> hasStruck{false};
sqlite3_mem_methods realMemory;

bool isOutOfMemory() {
  if (allocationsLeft <= 0 || --allocationsLeft != 0) return false;
  hasStruck = true;
  return true;
}

// Call it before anything else uses SQLite in this process.
Fault sqliteAllocations() {
  sqlite3_config(SQLITE_CONFIG_GETMALLOC, &realMemory);
  sqlite3_mem_methods failing = realMemory;
  failing.xMalloc = [](int size) { return isOutOfMemory() ? nullptr : realMemory.xMalloc(size); };
  failing.xRealloc = [](void* at, int size) { return isOutOfMemory() ? nullptr : realMemory.xRealloc(at, size); };
  sqlite3_config(SQLITE_CONFIG_MALLOC, &failing);
  return {.strike =
              [](const auto&, int number) {
                hasStruck = false;
                allocationsLeft = number;
              },
          .restore =
              [] {
                allocationsLeft = 0;
                return hasStruck.load();
              }};
}

Said underFault(const std::filesystem::path& data, const Work& work, const Fault& fault, int number) {
  ChildProcess process([&](const ChildProcess::Say& say) {
    World world(data);
    world.start();
    if (!world.sdk->acceptOrReject(true).get()) return say("not prepared");
    work.prepare(world);
    if (!work.opens) {
      world.restart();
      world.snapshot();
    }
    say("* prepared\n");
    fault.strike(data, number);
    work.perform(world, [&] { say("* acknowledged\n"); });
    const bool struck = fault.restore();
    say(world.log() + (struck ? "\n* struck\n" : "\n* done\n"));
  });
  return {process.finish()};
}

// Also in a child process: forking continues afterwards, which threads would prevent.
void checkInNextProcess(Trial& trial, const std::filesystem::path& data, const Work& work, const Said& said,
                        const std::string& where) {
  ChildProcess process([&](const ChildProcess::Say& say) {
    World next(data);
    Trial found(trial.isShort());
    work.check(found, next, said, where);
    for (const auto& entry : std::filesystem::directory_iterator(data)) {
      if (work.isDamaged) break;
      found.expect(entry.path().string().find(".damaged-") == std::string::npos, where + ": passed for damage");
    }
    for (const auto& failure : found.failures()) say(failure + "\n");
  });
  const auto failures = process.finish();
  trial.expect(failures.empty(), failures);
}

// Every call in turn, or every step-th, until the work makes fewer calls.
Seen sweep(Trial& trial, const Work& work, const Fault& fault, int step) {
  Seen seen{.status = "ready", .log = {}, .stored = allAcknowledged};
  int points = 0;
  for (int number = 1; trial.failures().size() < 5; number += step, ++points) {
    const TemporaryFolder place(TemporaryFolder::fastParent());
    const auto data = place.path() / "data";
    const std::string where = "call " + std::to_string(number);
    const auto begin = std::chrono::steady_clock::now();
    const Said said = underFault(data, work, fault, number);
    trial.expect(std::chrono::steady_clock::now() - begin < std::chrono::seconds(10), where + " hung");
    const bool ended = said.isDone() || said.has("* struck\n");
    if (!trial.expect(said.has("* prepared\n") && ended, where + ": " + said.text)) break;
    seen.log += said.text;
    checkInNextProcess(trial, data, work, said, where);
    if (said.isDone()) break;
  }
  trial.expect(points > 1, "hardly a call was made");
  return seen;
}

// Sweeps each work in turn.
Seen withoutMemory(Trial& trial) {
  const Fault fault = sqliteAllocations();
  Seen all;
  for (const Work* work : {&opening, &savingAConfiguration, &decision}) {
    // There are some thousand, of which many are alike.
    const Seen one = sweep(trial, *work, fault, trial.rounds(5, trial.oneIn(13)));
    all = {.status = one.status, .log = all.log + one.log, .stored = one.stored};
  }
  return all;
}

}  // namespace

std::vector<Row> sweepRows() {
  const struct {
    std::string_view name;
    std::string_view fault;
    const Work& work;
    int error;
    std::string log;
  } cases[] = {
      {"open-eio", "EIO at each call while it starts", opening, EIO, "disk I/O error"},
      {"open-eintr", "EINTR at each call while it starts", opening, EINTR, "disk I/O error"},
      {"aside-eio", "EIO at each call while a damaged store is set aside", settingAside, EIO, "damaged"},
      {"save-eio", "EIO at each call of saving a configuration", savingAConfiguration, EIO, "Error saving CDN"},
      {"save-full", "the disk full from each call of it on", savingAConfiguration, ENOSPC, "Error saving CDN"},
      {"save-eintr", "EINTR at each call of it", savingAConfiguration, EINTR, "Failed to store"},
      {"decide-eio", "EIO at each call of storing a decision", decision, EIO, "Failed to store"},
      {"decide-full", "the disk full from each call of it on", decision, ENOSPC, "Failed to store"},
      {"decide-eintr", "EINTR at each call of it", decision, EINTR, "Failed to store"},
  };
  std::vector<Row> rows;
  for (const auto& [name, fault, work, error, log] : cases) {
    // Few calls can be interrupted: every fifth would miss them all.
    const int stride = error == EINTR ? 1 : 3;
    rows.push_back({name,
                    fault,
                    [&swept = work, error, stride](Trial& trial) {
                      const auto strike = [&](const auto& data, int number) { breakCalls(data, error, number); };
                      return sweep(trial, swept, {strike, restoreCalls}, trial.oneIn(stride));
                    },
                    {"ready", log, allAcknowledged}});
  }
  rows.push_back(Row("sqlite-nomem", "SQLite runs out of memory at each fifth allocation of the three", withoutMemory,
                     {"ready", "out of memory", allAcknowledged}, std::chrono::seconds(1200)));
  return rows;
}

}  // namespace quillon::test
