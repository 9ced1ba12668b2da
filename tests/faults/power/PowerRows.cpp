// A power cut at every moment of a run; the next start finds one of the possible disk states: every acknowledged update
// is complete, and nothing is granted that was not.
#include <algorithm>
#include <fstream>
#include <limits>
#include <set>
#include <unordered_set>

#include "core/History/DecisionChain.h"
#include "core/Persistance/UserDefaults/StoreKeys.h"
#include "core/Persistance/UserDefaults/StoredValues.h"
#include "platform/linux/SqliteDatabase.h"
#include "tests/faults/Row.h"
#include "tests/faults/power/Disk.h"
#include "tests/faults/power/PowerDevice.h"
#include "tests/support/TemporaryFolder.h"

namespace quillon::test {
namespace {

using Path = std::filesystem::path;

struct PowerRun {
  std::string_view name;  // for --only
  std::string_view what;
  // Prepares durable data on the disk.
  void (*prepare)(const Path& data);
  // The run, recorded in the chronicle.
  void (*perform)(const Path& data, Chronicle& chronicle);
  bool isDamaged = false;  // the store is damaged before the run: it must report so, and no lost entry is granted
};

void decide(PowerDevice& device, std::int64_t purpose, ConsentStatus status) {
  if (!device.sdk().set({.purposeId = purpose}, status)) throw std::runtime_error("a decision was refused");
  device.run();
}

void answer(PowerDevice& device, bool accept) {
  auto stored = device.sdk().acceptOrReject(accept);
  device.run();
  if (!stored.get()) throw std::runtime_error("an answer was refused");
}

void install(const Path& data, int purposes = 3, bool isOptOut = false) {
  PowerDevice device(data);
  device.publish(1, purposes, isOptOut);
  device.start();
  answer(device, true);
}

void installed(const Path& data) {
  install(data);
}

void tamper(const Path& data, const char* sql) {
  auto database = SqliteDatabase::open(storeIn(data));
  if (!database || !database->run(sql)) throw std::runtime_error("the store could not be tampered with");
}

// Under a compliance type whose default is granted.
void refused(const Path& data) {
  install(data, 3, true);
  PowerDevice device(data);
  device.publish(1, 3, true);
  device.start();
  decide(device, 1, ConsentStatus::declined);
}

constexpr PowerRun runs[] = {
    {"power-start", "a first start with a download, and an answer", [](const Path&) {},
     [](const Path& data, Chronicle& chronicle) {
       PowerDevice device(data, &chronicle);
       device.start();
       answer(device, true);
     }},
    {"power-decision", "two decisions, one after the other", installed,
     [](const Path& data, Chronicle& chronicle) {
       PowerDevice device(data, &chronicle);
       decide(device, 1, ConsentStatus::withDrawn);
       decide(device, 2, ConsentStatus::declined);
     }},
    {"power-hundred", "a hundred purposes answered at once", [](const Path& data) { install(data, 100); },
     [](const Path& data, Chronicle& chronicle) {
       PowerDevice device(data, &chronicle);
       device.publish(1, 100);
       device.start();
       answer(device, false);
     }},
    {"power-upload", "an upload that clears the lists",
     [](const Path& data) {
       install(data);
       PowerDevice device(data);
       decide(device, 1, ConsentStatus::withDrawn);
     },
     [](const Path& data, Chronicle& chronicle) {
       PowerDevice device(data, &chronicle);
       device.start();
       auto uploaded = device.sdk().uploadPendingConsents();
       device.run();
       (void)uploaded.get();
     }},
    {"power-configuration", "a new configuration over an old one",
     [](const Path& data) {
       install(data);
       // Old enough that it needs a request before use.
       PowerDevice device(data);
       const auto aged = [](const SuiteEntries&) { return SuiteChanges{{"CDN_CACHED_TIMESTAMP", std::int64_t{1}}}; };
       if (!device.suite()->update(aged)) throw std::runtime_error("the store could not be prepared");
     },
     [](const Path& data, Chronicle& chronicle) {
       PowerDevice device(data, &chronicle);
       device.publish(2);
       device.start();
     }},
    {"power-removal", "everything removed, and decided anew", installed,
     [](const Path& data, Chronicle& chronicle) {
       PowerDevice device(data, &chronicle);
       device.start();
       device.sdk().removeConsents();
       device.run();
       decide(device, 1, ConsentStatus::declined);
     }},
    {"power-damage", "a damaged store set aside, and a new one begun",
     [](const Path& data) {
       refused(data);
       std::fstream(storeIn(data), std::ios::binary | std::ios::in | std::ios::out) << std::string(5000, '#');
     },
     [](const Path& data, Chronicle& chronicle) {
       PowerDevice device(data, &chronicle);
       decide(device, 2, ConsentStatus::granted);
     },
     true},
    {"power-row", "a damaged row found, and what is left of the store taken over",
     [](const Path& data) {
       refused(data);
       tamper(data, "UPDATE entries SET value='granted' WHERE key='1'");
     },
     [](const Path& data, Chronicle& chronicle) {
       PowerDevice device(data, &chronicle);
       decide(device, 3, ConsentStatus::declined);
     },
     true},
    {"power-two", "two SDKs over one folder, as in two processes, that decide in turn", installed,
     [](const Path& data, Chronicle& chronicle) {
       PowerDevice one(data, &chronicle);
       PowerDevice two(data, &chronicle);
       decide(one, 1, ConsentStatus::withDrawn);
       decide(two, 1, ConsentStatus::granted);
       decide(one, 2, ConsentStatus::declined);
       decide(two, 3, ConsentStatus::declined);
     }},
};

using Calls = std::vector<DiskCall>;

// The thoroughness.
struct Effort {
  std::size_t combinations;  // see forEachState
  std::size_t oneOf = 1;     // test one state in so many, selected by content
  std::size_t enough = 5;    // stop after this many faults
};

// The recorded calls of a run, and the disk before it.
struct Recorded {
  Disk disk;
  Calls calls;
  std::vector<SuiteImage> images;  // before the run, and after each update
};

Recorded record(const PowerRun& run) {
  const TemporaryFolder place(TemporaryFolder::fastParent());
  const auto data = place.path() / "data";
  std::filesystem::create_directory(data);
  run.prepare(data);
  Recorded recorded{Disk(data), {}, {}};
  {
    // Reads a copy, so that the run finds the original untouched.
    const auto copy = place.path() / "copy";
    std::filesystem::copy(data, copy);
    recorded.images.push_back(imageOf(*PowerDevice(copy).suite()));
  }
  Chronicle chronicle;
  recordCalls(data);
  run.perform(data, chronicle);
  recorded.calls = recordedCalls();
  std::ranges::move(chronicle.images, std::back_inserter(recorded.images));
  return recorded;
}

std::string described(const DiskState& state) {
  std::string text;
  for (const auto& [name, content] : state) text += " " + name + " (" + std::to_string(content.size()) + " bytes)";
  return text;
}

void layOut(const DiskState& state, const Path& data) {
  std::filesystem::remove_all(data);
  std::filesystem::create_directory(data);
  for (const auto& [name, content] : state) setFileBytes(data / name, content);
}

// Whether no entry of the history looks changed, among the newest.
bool holdsTogether(KeyValueSuite& suite) {
  constexpr std::size_t count = 20;
  const auto page = suite.journal(std::numeric_limits<std::int64_t>::max(), count + 1);
  if (!page) return false;
  ChainState state{StoredValues(*suite.snapshot()).string(key::historyHead, {}), {}, true};
  if (!page->records.empty()) state.newestNumber = page->records.front().number;
  const auto history = verifiedHistory(*page, count, state);
  return !history.isNewestMissing && history.damaged == 0 &&
         std::ranges::all_of(history.entries, [](const auto& entry) { return entry.link == HistoryLink::intact; });
}

// Opens a state with the real SDK; returns the fault, empty if none.
std::string fault(const PowerRun& run, const DiskState& state, const Path& data, const SuiteImage& acknowledged,
                  const SuiteImage& underWay) try {
  layOut(state, data);
  PowerDevice device(data);
  device.publish(3);
  // A configuration that was in use can be had without the servers.
  if (!run.isDamaged && acknowledged.entries.contains(std::string(key::configurationVersion))) device.disconnect();
  const auto found = imageOf(*device.suite());
  if (found != acknowledged && found != underWay) {
    return found.entries.contains(lostEntriesKey) && !run.isDamaged ? "passed for damage" : "another content is found";
  }
  if (!run.isDamaged && !holdsTogether(*device.suite())) return "the history looks changed";
  const bool isLost = found.entries.contains(lostEntriesKey);
  if (run.isDamaged && !isLost) return "the loss is not known";
  const auto statusOf = [&](const std::string& key) {
    const auto entry = found.entries.find(key);
    return entry == found.entries.end() ? std::string() : std::get<std::string>(entry->second);
  };
  const bool isGrantedByDefault = !isLost && statusOf("CURRENT_COMPLIANCE_TYPE") != "opt-in";
  for (const std::int64_t id : {1, 2, 3, 99}) {
    const auto stored = statusOf(std::to_string(id));
    const bool mayBeGranted = stored == "granted" || (stored.empty() && isGrantedByDefault);
    if (device.sdk().get(id) == ConsentStatus::granted && !mayBeGranted) {
      return std::to_string(id) + " is granted, and was not";
    }
  }
  device.start();
  if (device.sdk().getStatus() != SDKStatus::ready) return "no configuration can be had";
  if (!device.sdk().set({.purposeId = 1}, ConsentStatus::declined)) return "nothing can be stored any more";
  if (device.sdk().get(1) != ConsentStatus::declined) return "a new decision does not hold";
  if (!run.isDamaged && !holdsTogether(*device.suite())) return "the history looks changed after a new decision";
  return {};
} catch (const std::exception& error) {
  return error.what();
}

struct Outcome {
  std::size_t moments = 0;
  std::size_t states = 0;  // different ones
  std::vector<std::string> faults;
};

// Cuts the power after each call.
Outcome cutPower(const PowerRun& run, const Recorded& recorded, const Effort& effort) {
  const TemporaryFolder place(TemporaryFolder::fastParent());
  const auto data = place.path() / "data";
  Outcome outcome;
  std::mt19937 random(1);
  std::unordered_set<std::size_t> different;
  std::set<std::tuple<std::size_t, std::size_t, std::size_t>> seen;
  Disk disk = recorded.disk;
  std::size_t acknowledged = 0;
  std::size_t underWay = 0;
  const auto cut = [&](const std::string& after) {
    ++outcome.moments;
    forEachState(disk, effort.combinations, random, [&](const DiskState& state) {
      if (outcome.faults.size() >= effort.enough) return;
      std::string whole;
      for (const auto& [name, content] : state) {
        whole += name + '\0' + std::to_string(content.size()) + '\0' + content;
      }
      const auto hash = std::hash<std::string>()(whole);
      if (hash % effort.oneOf != 0) return;
      different.insert(hash);
      if (!seen.emplace(hash, acknowledged, underWay).second) return;
      const auto& images = recorded.images;
      const auto wrong = fault(run, state, data, images.at(acknowledged), images.at(underWay));
      if (!wrong.empty()) outcome.faults.push_back(after + ": " + wrong + ":" + described(state));
    });
  };
  cut("before anything");
  for (std::size_t i = 0; i < recorded.calls.size(); ++i) {
    const auto& call = recorded.calls[i];
    if (call.kind == DiskCall::Kind::mark) {
      ++(call.name == "begun" ? underWay : acknowledged);
    } else {
      disk.apply(call);
    }
    cut("after call " + std::to_string(i + 1) + " of " + std::to_string(recorded.calls.size()) + " (" + call.name +
        ")");
  }
  outcome.states = different.size();
  return outcome;
}

Seen powerCuts(const PowerRun& run, Trial& trial) {
  const auto oneOf = static_cast<std::size_t>(trial.oneIn(isSanitized ? 16 : 8));
  const auto outcome = cutPower(run, record(run), {.combinations = trial.isShort() ? 3u : 250u, .oneOf = oneOf});
  for (const auto& fault : outcome.faults) trial.expect(false, fault);
  trial.tell(std::to_string(outcome.states) + " different states at " + std::to_string(outcome.moments) + " moments");
  trial.expect(outcome.states * oneOf > 100, "hardly a state was built");
  return {.status = "ready", .log = {}, .stored = allAcknowledged};
}

bool isSyncOf(const DiskCall& call, std::string_view suffix) {
  return call.kind == DiskCall::Kind::syncFile && call.name.ends_with(suffix);
}

void omitSyncs(Calls& calls, std::string_view suffix) {
  std::erase_if(calls, [&](const DiskCall& call) { return isSyncOf(call, suffix); });
}

// Removes calls from a recording that a faulty SDK would omit.
struct Planted {
  std::string_view fault;
  std::string_view run;
  void (*plant)(Calls&);
};

constexpr Planted plants[] = {
    {"no sync of the store", "power-decision", [](Calls& calls) { omitSyncs(calls, ".sqlite"); }},
    {"no sync of its journal", "power-decision", [](Calls& calls) { omitSyncs(calls, "-journal"); }},
    {"no sync of the folder", "power-start",
     [](Calls& calls) {
       std::erase_if(calls, [](const auto& call) { return call.kind == DiskCall::Kind::syncFolder; });
     }},
    {"a new store takes its place before it is synced", "power-start",
     [](Calls& calls) {
       const auto renamed = std::ranges::find_if(calls, [](const DiskCall& call) {
         return call.kind == DiskCall::Kind::rename && call.name.ends_with(".sqlite");
       });
       const auto synced =
           std::ranges::find_if(calls, [](const DiskCall& call) { return isSyncOf(call, ".sqlite.new"); });
       if (renamed < calls.end() && synced < renamed) std::rotate(synced, synced + 1, renamed + 1);
     }},
    {"a damaged store moved away before the new one takes its place", "power-damage",
     [](Calls& calls) {
       for (auto& call : calls) {
         if (call.kind != DiskCall::Kind::link || call.name.ends_with("-journal")) continue;
         call = {.kind = DiskCall::Kind::rename,
                 .file = call.file,
                 .name = "elsewhere",
                 .before = "quillon-cmp-sdk.sqlite"};
       }
     }},
};

Seen plantedFaults(Trial& trial) {
  if (isSanitized) throw LeftOut("it is about this table, and the release has shown it");
  for (const auto& [name, runName, plant] : plants) {
    const auto run = std::ranges::find(runs, runName, &PowerRun::name);
    auto recorded = record(*run);
    const auto before = recorded.calls.size();
    plant(recorded.calls);
    const auto outcome = cutPower(*run, recorded, {.combinations = 3, .enough = 1});
    trial.expect(!outcome.faults.empty(), std::string(name) + ": not found in " + std::to_string(outcome.states) +
                                              " states of " + std::to_string(before) + " calls");
  }
  return {.status = "ready", .log = {}, .stored = "each fault was found"};
}

}  // namespace

std::vector<Row> powerRows() {
  std::vector<Row> rows;
  for (const PowerRun& run : runs) {
    rows.push_back(Row(
        run.name, run.what, [&run](Trial& trial) { return powerCuts(run, trial); }, {"ready", "", allAcknowledged},
        std::chrono::seconds(3600)));
  }
  rows.push_back(Row("power-planted", "faults put into the record of a run, each of which the cuts must show",
                     plantedFaults, {"ready", "", "each fault was found"}));
  return rows;
}

}  // namespace quillon::test
