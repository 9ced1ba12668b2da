// Faults of the cached configuration and its folder.
#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <boost/json.hpp>

#include "core/Persistance/UserDefaults/StoreKeys.h"
#include "tests/faults/Areas.h"
#include "tests/faults/Damage.h"
#include "tests/support/World.h"

namespace quillon::test {
namespace {

boost::json::object newer() {
  auto document = validConfiguration();
  document["version"] = 6;
  return document;
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

// Something else in place of the file.
std::function<Seen(Trial&)> inPlaceOfTheFile(void (*put)(const std::filesystem::path&)) {
  return [put](Trial&) {
    World world;
    world.start();
    std::filesystem::remove(world.file());
    put(world.file());
    world.start();
    return seen(world, "version " + std::to_string(world.stored().integer(key::configurationVersion, 0)));
  };
}

// On a small separate disk, completely full.
Seen fullDisk(Trial& trial) {
  const TemporaryFolder place;
  if (::unshare(CLONE_NEWNS) != 0 || ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
      ::mount("none", place.path().c_str(), "tmpfs", 0, "size=256k") != 0) {
    throw LeftOut("a small disk needs the rights of root, outside of a changed root");
  }
  Seen result;
  {
    World world(place.path() / "data");
    world.start();
    trial.expect(world.sdk->set({.purposeId = 1}, ConsentStatus::granted), "refused before the disk was full");
    const auto filler = place.path() / "filler";
    const int file = ::open(filler.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    const std::string block(4096, 'x');
    while (::write(file, block.data(), block.size()) > 0) {
    }
    ::close(file);
    const std::string longSubject(20'000, 's');
    auto options = world.options();
    options.subjectId = longSubject;
    world.server.serve(newer());
    world.clock->jump(std::chrono::hours(2));
    world.start(options);
    trial.expect(world.text(key::subjectId) != longSubject, "stored where there is no room");
    trial.expect(world.log().find("[ERROR]Failed to store: ") != std::string::npos, "a failed write is not logged");
    result = seen(world);
    std::filesystem::remove(filler);
    trial.expect(world.sdk->set({.purposeId = 1}, ConsentStatus::withDrawn), "refused after room was made");
    trial.expect(world.text("1") == "withdrawn", "not stored after room was made");
  }
  ::umount(place.path().c_str());
  return result;
}

// The folder is read-only: owned by another user, or mounted read-only.
Seen readOnlyFolder(Trial& trial) {
  World world;
  world.start();
  trial.expect(world.sdk->set({.purposeId = 1}, ConsentStatus::granted), "refused at first");
  world.settle();
  world.sdk.reset();
  world.platform = {};
  std::vector<std::filesystem::path> others{world.folder.path(), world.data};
  for (const auto& entry : std::filesystem::directory_iterator(world.data)) {
    ::chmod(entry.path().c_str(), 0400);
    others.push_back(entry.path());
  }
  for (const auto& path : others) {
    if (::geteuid() == 0 && ::chown(path.c_str(), 65534, 65534) != 0) throw std::runtime_error("no other owner");
  }
  ::chmod(world.data.c_str(), 0500);
  if (::geteuid() == 0 && ::setuid(65534) != 0) throw std::runtime_error("no other user");
  world.server.serve(newer());
  world.restart();
  world.clock->jump(std::chrono::hours(2));
  world.start();
  trial.expect(!world.sdk->set({.purposeId = 1}, ConsentStatus::withDrawn), "acknowledged where nothing can be stored");
  Seen result = seen(world);
  ::chmod(world.data.c_str(), 0700);
  return result;
}

}  // namespace

std::vector<Row> fileRows() {
  return {
      {"cache-damage",
       "the cached configuration cut at every length, each byte changed, zeroed in places; no server",
       damagedConfiguration,
       {"unavailable", "Failed to fetch CDN File", "nothing granted"}},
      {"cache-folder",
       "a folder in place of the cached configuration",
       inPlaceOfTheFile([](const auto& path) { std::filesystem::create_directory(path); }),
       {"unavailable", "Error saving CDN", "version 5"}},
      {"cache-pipe",
       "a pipe in its place",
       inPlaceOfTheFile([](const auto& path) { ::mkfifo(path.c_str(), 0600); }),
       {"ready", "", "version 5"}},
      {"cache-link",
       "a link to a device in its place",
       inPlaceOfTheFile([](const auto& path) { std::filesystem::create_symlink("/dev/zero", path); }),
       {"ready", "", "version 5"}},
      {"cache-huge",
       "a file of 5 GB in its place",
       inPlaceOfTheFile([](const auto& path) {
         setFileBytes(path, "{");
         std::filesystem::resize_file(path, std::uintmax_t{5} << 30);
       }),
       {"ready", "", "version 5"}},
      {"disk-full", "the disk is full, and later has room again", fullDisk, {"ready", "Error saving CDN", "1=granted"}},
      {"read-only",
       "the folder and its files may only be read",
       readOnlyFolder,
       {"ready", "Error saving CDN", "1=granted"}},
  };
}

}  // namespace quillon::test
