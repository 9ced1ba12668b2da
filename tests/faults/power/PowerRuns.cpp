#include "tests/faults/power/PowerRuns.h"

#include <fcntl.h>
#include <sqlite3.h>

#include <fstream>
#include <stdexcept>

#include "tests/support/TemporaryFolder.h"

namespace quillon::test {
namespace {

using Path = std::filesystem::path;

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

Path storeIn(const Path& data) {
  return data / "quillon-cmp-sdk.sqlite";
}

// Runs SQL, as in the sqlite3 shell.
void sql(const Path& data, const char* statement) {
  sqlite3* connection = nullptr;
  const bool done = sqlite3_open(storeIn(data).c_str(), &connection) == SQLITE_OK &&
                    sqlite3_exec(connection, statement, nullptr, nullptr, nullptr) == SQLITE_OK;
  sqlite3_close(connection);
  if (!done) throw std::runtime_error("the store could not be tampered with");
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
       sql(data, "UPDATE entries SET value='granted' WHERE key='1'");
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

}  // namespace

std::span<const PowerRun> powerRuns() {
  return runs;
}

}  // namespace quillon::test
