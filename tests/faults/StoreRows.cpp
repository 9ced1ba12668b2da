// Faults of the durable store.
#include <sqlite3.h>
#include <sys/stat.h>

#include <boost/json.hpp>
#include <thread>

#include "core/Persistance/UserDefaults/StoreKeys.h"
#include "platform/linux/SqliteDatabase.h"
#include "platform/linux/SqliteStore.h"
#include "platform/linux/WorkPool.h"
#include "tests/faults/Areas.h"
#include "tests/faults/Damage.h"
#include "tests/platform/ChildProcess.h"
#include "tests/support/World.h"

namespace quillon::test {
namespace {

using namespace std::chrono_literals;

std::filesystem::path storeOf(const World& world) {
  return world.data / "quillon-cmp-sdk.sqlite";
}

// A store with 1 withdrawn, 2 granted and 3 declined, under a compliance type whose default is granted, then damaged in
// any way: only 2 may ever read as granted, and the store continues to work.
Seen damagedStore(Trial& trial) {
  const TemporaryFolder place;
  const auto data = place.path() / "data";
  std::string bytes;
  {
    World world(data);
    world.store(key::currentComplianceType, std::string("opt-out"));
    world.sdk->set({.purposeId = 1}, ConsentStatus::withDrawn);
    world.sdk->set({.purposeId = 2}, ConsentStatus::granted);
    world.sdk->set({.purposeId = 3}, ConsentStatus::declined);
    bytes = fileBytes(storeOf(world));
  }
  Seen last;
  std::string log;
  forEachDamage(bytes, trial, [&](const std::string& name, const std::string& damaged) {
    if (trial.failures().size() > 5) return;
    std::filesystem::remove_all(data);
    std::filesystem::create_directory(data);
    World world(data);
    setFileBytes(storeOf(world), damaged);
    world.restart();
    for (const int purpose : {1, 3}) {
      trial.expect(world.sdk->get(purpose) != ConsentStatus::granted,
                   name + ": " + std::to_string(purpose) + " reads as a consent");
    }
    trial.expect(world.sdk->set({.purposeId = 1}, ConsentStatus::withDrawn), name + ": cannot be written");
    world.settle();
    last = seen(world);
    log += last.log;
  });
  last.log = log;
  return last;
}

// The user answers the banner after a loss: from then on the compliance type's default applies again.
Seen answerAfterALoss(Trial& trial) {
  World world;
  auto document = validConfiguration();
  bannerOf(document)["compliance_type"] = "opt-out";
  world.server.serve(document);
  world.start();
  trial.expect(world.sdk->get(99) == ConsentStatus::granted, "under opt-out an undecided purpose is not granted");
  world.sdk->acceptOrReject(false).get();
  world.sdk.reset();
  world.platform = {};
  setFileBytes(storeOf(world), "rubbish");
  world.start();
  trial.expect(world.sdk->get(1) == ConsentStatus::declined, "a lost refusal reads as a consent");
  trial.expect(world.sdk->isBannerDue(), "the user is not asked again");
  world.sdk->checkConsents().get();
  trial.expect(world.sdk->get(1) == ConsentStatus::declined, "a default was recorded as a consent");
  world.settle();
  world.sdk->acceptOrReject(true).get();
  trial.expect(world.sdk->get(99) == ConsentStatus::granted, "the answer did not bring back the default");
  return seen(world);
}

// The console output of a process before it ends.
class SpokenConsole : public Console {
 public:
  explicit SpokenConsole(ChildProcess::Say say) : say_(std::move(say)) {}
  void write(std::string_view block) override { say_(std::string(block) + "\n"); }
  [[noreturn]] void fatal(std::string_view message, std::string_view) override {
    say_(message);
    std::abort();
  }

 private:
  const ChildProcess::Say say_;
};

// Another process, stopped during a decision, holds the store for longer than a start waits. Nothing is granted
// meanwhile, even if the default is granted, and everything recovers once it is released.
Seen heldStore(Trial& trial) {
  const TemporaryFolder place;
  const auto data = place.path() / "data";
  auto document = validConfiguration();
  bannerOf(document)["compliance_type"] = "opt-out";
  ChildProcess first([&](const auto&) {
    World world(data);
    world.server.serve(document);
    world.start();
    world.sdk->acceptOrReject(true).get();
  });
  trial.expect(first.finish().empty(), "not prepared");
  ChildProcess holder([&](const auto& say) {
    auto database = SqliteDatabase::open(data / "quillon-cmp-sdk.sqlite");
    say(database && database->run("BEGIN EXCLUSIVE") ? "held" : "not held");
    ::pause();
  });
  trial.expect(holder.hear() == "held", "the store was not held");

  World world(data);
  world.server.serve(document);
  world.amend = [&](Platform& platform) {
    const std::chrono::milliseconds patience = trial.isShort() ? 300ms : 10s;
    platform.store = std::make_shared<SqliteStore>(data, std::make_shared<WorkPool>("store", 2), patience);
  };
  world.restart();
  for (const int purpose : {1, 99}) {
    trial.expect(world.sdk->get(purpose) == ConsentStatus::declined, "granted while nothing is known");
  }
  trial.expect(!world.sdk->set({.purposeId = 1}, ConsentStatus::withDrawn), "stored while it was held");
  holder.kill();
  const auto deadline = std::chrono::steady_clock::now() + 10s;
  while (world.sdk->get(1) != ConsentStatus::granted && std::chrono::steady_clock::now() < deadline) {
    std::this_thread::sleep_for(10ms);
  }
  trial.expect(world.sdk->set({.purposeId = 3}, ConsentStatus::withDrawn), "refused though nobody holds it");
  world.start();
  return seen(world);
}

// Something else in place of the store: the only error that stops the application.
std::function<Seen(Trial&)> inPlaceOfTheStore(void (*put)(const std::filesystem::path&)) {
  return [put](Trial& trial) -> Seen {
    const TemporaryFolder place;
    const auto data = place.path() / "data";
    std::filesystem::create_directory(data);
    put(data / "quillon-cmp-sdk.sqlite");
    ChildProcess process([&](const auto& say) {
      World world(data);
      world.amend = [&](Platform& platform) { platform.console = std::make_shared<SpokenConsole>(say); };
      world.start();
    });
    const auto said = process.finish();
    trial.expect(said.ends_with("\nCould not create or access UserDefaults suite: quillon-cmp-sdk"
                                " [ended with wait status 6]"),
                 "it ended otherwise: " + said);
    trial.expect(said.find("[ERROR] Store " + data.string()) != said.npos, "the reason was not told: " + said);
    return {.status = "stopped", .log = {}, .stored = {}};
  };
}

// Values of wrong types, as another version might leave them.
Seen wrongTypes(Trial& trial) {
  using Limits = std::numeric_limits<std::int64_t>;
  const std::vector<PropertyValue> values{true,
                                          std::int64_t{1},
                                          Limits::min(),
                                          Limits::max(),
                                          std::string("granted"),
                                          PropertyDate{5ms},
                                          std::vector<std::int64_t>{1},
                                          std::vector<std::string>{"granted"}};
  Seen last;
  for (const auto& value : values) {
    World world;
    for (const auto& key : key::all) world.store(key, value);
    for (const auto* key : {"1", "2", "3", "NSCameraUsageDescription"}) {
      if (!std::holds_alternative<std::string>(value)) world.store(key, value);
    }
    world.store("OF_A_LATER_VERSION", std::string("kept"));
    world.start();
    trial.expect(world.sdk->get(1) == ConsentStatus::declined, "a value of another type reads as a consent");
    trial.expect(world.sdk->isBannerDue() || !std::holds_alternative<std::string>(value), "the user is never asked");
    world.sdk->checkConsents().get();
    trial.expect(world.sdk->acceptOrReject(false).get(), "no answer can be stored any more");
    world.settle();
    trial.expect(world.uploads().size() > 0, "nothing is uploaded any more");
    trial.expect(world.text("OF_A_LATER_VERSION") == "kept", "a key of a later version is gone");
    last = seen(world);
  }
  return last;
}

// Limits SQLite's memory to so much above its current use.
Seen withoutMemory(Trial& trial) {
  World world;
  world.start();
  trial.expect(world.sdk->set({.purposeId = 1}, ConsentStatus::granted), "refused at first");
  int refused = 0;
  auto current = ConsentStatus::granted;
  for (int spare = 0; spare < 40'000; spare += trial.rounds(500, 5000)) {
    const auto next = current == ConsentStatus::granted ? ConsentStatus::withDrawn : ConsentStatus::granted;
    sqlite3_hard_heap_limit64(sqlite3_memory_used() + spare + 1);
    const bool stored = world.sdk->set({.purposeId = 1}, next);
    sqlite3_hard_heap_limit64(0);
    refused += stored ? 0 : 1;
    if (stored) current = next;
    trial.expect(world.sdk->get(1) == current, "the store holds something else than acknowledged");
  }
  trial.expect(refused > 0, "memory was never short");
  trial.expect(world.sdk->set({.purposeId = 1}, ConsentStatus::withDrawn), "refused with memory again");
  return seen(world);
}

}  // namespace

std::vector<Row> storeRows() {
  return {
      {"store-damage",
       "the store cut at every length, each byte changed, zeroed in places, 200 times several bits",
       damagedStore,
       {"unavailable", "damaged", "1=withdrawn"},
       std::chrono::seconds(600)},
      {"store-lost",
       "the store overwritten, and the banner answered anew",
       answerAfterALoss,
       {"ready", "damaged", "1=granted"}},
      {"store-folder",
       "a folder in place of the store",
       inPlaceOfTheStore([](const auto& path) { std::filesystem::create_directory(path); }),
       {"stopped", "", ""}},
      {"store-link",
       "a link in its place",
       inPlaceOfTheStore([](const auto& path) { std::filesystem::create_symlink("other", path); }),
       {"stopped", "", ""}},
      {"store-held",
       "another process holds the store for longer than a start waits",
       heldStore,
       {"ready", "is held by another process", "1=granted"}},
      {"store-types", "each key holds a value of each wrong type", wrongTypes, {"ready", "", "1=declined"}},
      {"store-memory",
       "SQLite runs out of memory at every point of a decision",
       withoutMemory,
       {"ready", "Failed to store", "1=withdrawn"}},
  };
}

}  // namespace quillon::test
