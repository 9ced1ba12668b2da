// Faults of the durable store, the cached configuration and their folder.
#include <sys/stat.h>
#include <unistd.h>

#include <boost/json.hpp>
#include <random>
#include <thread>

#include "core/Persistance/UserDefaults/StoreKeys.h"
#include "platform/linux/SqliteDatabase.h"
#include "platform/linux/SqliteStore.h"
#include "platform/linux/StandardConsole.h"
#include "platform/linux/WorkPool.h"
#include "tests/faults/Row.h"
#include "tests/platform/ChildProcess.h"

namespace quillon::test {
namespace {

using namespace std::chrono_literals;
using Path = std::filesystem::path;

// Truncation to every length, a flipped bit in each byte, zeroed sectors, and random flips in several places; in a
// short trial a sample of each.
void forEachDamage(const std::string& bytes, const Trial& trial,
                   const std::function<void(const std::string& name, const std::string& damaged)>& visit) {
  const auto size = bytes.size();
  const auto step = trial.isShort() ? size / 16 + 1 : 1;
  for (std::size_t length = 0; length < size; length += step) {
    visit("cut to " + std::to_string(length), bytes.substr(0, length));
  }
  std::mt19937 random(1);
  const auto flipBit = [&](char& byte) { byte = static_cast<char>(byte ^ (1 << random() % 8)); };
  for (std::size_t place = 0; place < size; place += step) {
    auto damaged = bytes;
    flipBit(damaged[place]);
    visit("byte " + std::to_string(place), damaged);
  }
  constexpr std::size_t sector = 512;
  for (std::size_t place = 0; place < size; place += sector) {
    const auto count = std::min(sector, size - place);
    visit("zeroed at " + std::to_string(place), std::string(bytes).replace(place, count, count, '\0'));
  }
  for (int round = 0; round < trial.rounds(200, 10); ++round) {
    auto damaged = bytes;
    // Every third round flips the header, the first hundred bytes, where flips do most harm.
    const auto range = round % 3 == 0 ? std::min<std::size_t>(100, size) : size;
    for (int left = 2 + round % 4; left > 0; --left) flipBit(damaged[random() % range]);
    visit("flips, round " + std::to_string(round), damaged);
  }
}

// A store with 1 withdrawn, 2 granted and 3 declined, under a compliance type whose default is granted, then damaged in
// any way: only 2 may ever read as granted, and the store continues to work.
Seen damagedStore(Trial& trial) {
  const TemporaryFolder place;
  const auto data = place.path() / "data";
  {
    World world(data);
    world.store(key::currentComplianceType, std::string("opt-out"));
    world.sdk->set({.purposeId = 1}, ConsentStatus::withDrawn);
    world.sdk->set({.purposeId = 2}, ConsentStatus::granted);
    world.sdk->set({.purposeId = 3}, ConsentStatus::declined);
  }
  Seen last;
  std::string log;
  forEachDamage(fileBytes(storeIn(data)), trial, [&](const std::string& name, const std::string& damaged) {
    if (trial.failures().size() > 5) return;
    std::filesystem::remove_all(data);
    std::filesystem::create_directory(data);
    World world(data);
    setFileBytes(storeIn(data), damaged);
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

boost::json::object underOptOut() {
  auto document = validConfiguration();
  bannerOf(document)["compliance_type"] = "opt-out";
  return document;
}

// The user answers the banner after a loss: from then on the compliance type's default applies again.
Seen answerAfterALoss(Trial& trial) {
  World world;
  world.server.serve(underOptOut());
  world.start();
  trial.expect(world.sdk->get(99) == ConsentStatus::granted, "under opt-out an undecided purpose is not granted");
  world.sdk->acceptOrReject(false).get();
  world.sdk.reset();
  world.platform = {};
  setFileBytes(storeIn(world.data), "rubbish");
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

// Another connection, stopped during a decision, holds the store for longer than a start waits. Nothing is granted
// meanwhile, even if the default is granted, and everything recovers once it is released.
Seen heldStore(Trial& trial) {
  World world;
  world.server.serve(underOptOut());
  world.start();
  world.sdk->acceptOrReject(true).get();
  auto holder = SqliteDatabase::open(storeIn(world.data));
  if (!holder || !holder->run("BEGIN EXCLUSIVE")) throw std::runtime_error("the store was not held");

  world.amend = [&](Platform& platform) {
    platform.store = std::make_shared<SqliteStore>(world.data, std::make_shared<WorkPool>("store", 2), 300ms);
  };
  world.restart();
  for (const int purpose : {1, 99}) {
    trial.expect(world.sdk->get(purpose) == ConsentStatus::declined, "granted while nothing is known");
  }
  trial.expect(!world.sdk->set({.purposeId = 1}, ConsentStatus::withDrawn), "stored while it was held");
  trial.expect(holder->run("ROLLBACK").has_value(), "the store was not released");
  const auto deadline = std::chrono::steady_clock::now() + 10s;
  while (world.sdk->get(1) != ConsentStatus::granted && std::chrono::steady_clock::now() < deadline) {
    std::this_thread::sleep_for(10ms);
  }
  trial.expect(world.sdk->set({.purposeId = 3}, ConsentStatus::withDrawn), "refused though nobody holds it");
  world.start();
  return seen(world);
}

// A link in place of the store: the only kind of error that stops the application, which says why.
Seen linkInPlaceOfTheStore(Trial& trial) {
  const TemporaryFolder place;
  const auto data = place.path() / "data";
  std::filesystem::create_directory(data);
  std::filesystem::create_symlink("other", storeIn(data));
  ChildProcess process([&](const auto& say) {
    for (const int output : {STDOUT_FILENO, STDERR_FILENO}) ::dup2(say.end, output);
    World world(data);
    world.amend = [](Platform& platform) { platform.console = std::make_shared<StandardConsole>(); };
    world.start();
  });
  const auto said = process.finish();
  trial.expect(said.ends_with(": Fatal error: Could not create or access UserDefaults suite: quillon-cmp-sdk\n"
                              " [ended with wait status 6]"),
               "it ended otherwise: " + said);
  trial.expect(said.find("[ERROR] Store " + data.string()) != said.npos, "the reason was not told: " + said);
  return {.status = "stopped", .log = {}, .stored = {}};
}

// Values of wrong types, as another version might leave them.
Seen wrongTypes(Trial& trial) {
  using Limits = std::numeric_limits<std::int64_t>;
  const PropertyValue values[] = {true,
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

// Any damage, while the server is down: the file is read as it was saved, or not at all.
Seen damagedConfiguration(Trial& trial) {
  World world;
  world.start();
  const auto bytes = fileBytes(world.file());
  const auto banner = world.sdk->getBannerConfig().get();
  world.server.onConfiguration(json("{}", 500));
  forEachDamage(bytes, trial, [&](const std::string& name, const std::string& damaged) {
    setFileBytes(world.file(), damaged);
    world.start();
    const bool ready = world.sdk->getStatus() == SDKStatus::ready;
    trial.expect(!ready || world.sdk->getBannerConfig().get() == banner, name + ": a changed configuration is used");
    trial.expect(world.text(key::currentComplianceType) == "opt-in" && world.sdk->get(1) == ConsentStatus::declined,
                 name + ": reads as a consent");
  });
  setFileBytes(world.file(), bytes.substr(0, bytes.size() / 2));
  world.start();
  return seen(world, "nothing granted");
}

// A file of 5 GB in place of the cached configuration, which is downloaded again.
Seen hugeConfiguration(Trial&) {
  World world;
  world.start();
  setFileBytes(world.file(), "{");
  std::filesystem::resize_file(world.file(), std::uintmax_t{5} << 30);
  world.start();
  return seen(world, "version " + std::to_string(world.stored().integer(key::configurationVersion, 0)));
}

// The folder and its files may only be read, by a user who is not the administrator.
Seen readOnlyFolder(Trial& trial) {
  World world;
  world.start();
  trial.expect(world.sdk->set({.purposeId = 1}, ConsentStatus::granted), "refused at first");
  world.settle();
  world.sdk.reset();
  world.platform = {};
  std::vector<Path> paths{world.folder.path(), world.data};
  for (const auto& entry : std::filesystem::directory_iterator(world.data)) {
    ::chmod(entry.path().c_str(), 0400);
    paths.push_back(entry.path());
  }
  ::chmod(world.data.c_str(), 0500);
  if (constexpr uid_t nobody = 65534; ::geteuid() == 0) {
    for (const auto& path : paths) {
      if (::chown(path.c_str(), nobody, nobody) != 0) throw std::runtime_error("no other owner");
    }
    if (::setuid(nobody) != 0) throw std::runtime_error("no other user");
  }
  auto newer = validConfiguration();
  newer["version"] = 6;
  world.server.serve(newer);
  world.restart();
  world.startLater();
  trial.expect(!world.sdk->set({.purposeId = 1}, ConsentStatus::withDrawn), "acknowledged where nothing can be stored");
  Seen result = seen(world);
  ::chmod(world.data.c_str(), 0700);
  return result;
}

}  // namespace

std::vector<Row> storeRows() {
  return {
      Row("store-damage", "the store cut at every length, each byte changed, zeroed in places, 200 times several bits",
          damagedStore, {"unavailable", "damaged", "1=withdrawn"}, std::chrono::seconds(600)),
      Row("store-lost", "the store overwritten, and the banner answered anew", answerAfterALoss,
          {"ready", "damaged", "1=granted"}),
      Row("store-link", "a link in place of the store", linkInPlaceOfTheStore, {"stopped", "", ""}),
      Row("store-held", "another process holds the store for longer than a start waits", heldStore,
          {"ready", "is held by another process", "1=granted"}),
      Row("store-types", "each key holds a value of each wrong type", wrongTypes, {"ready", "", "1=declined"}),
      Row("cache-damage",
          "the cached configuration cut at every length, each byte changed, zeroed in places; no server",
          damagedConfiguration, {"unavailable", "Failed to fetch CDN File", "nothing granted"}),
      Row("cache-huge", "a file of 5 GB in place of the cached configuration", hugeConfiguration,
          {"ready", "", "version 5"}),
      Row("read-only", "the folder and its files may only be read", readOnlyFolder,
          {"ready", "Error saving CDN", "1=granted"}),
  };
}

}  // namespace quillon::test
