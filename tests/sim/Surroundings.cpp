#include "tests/sim/Surroundings.h"

#include <algorithm>

namespace quillon::sim {
namespace {

// Noon of 1 January 2025, UTC.
constexpr WallTime start{std::chrono::seconds(1'735'732'800)};

}  // namespace

Surroundings::Surroundings(const Plan& of, Trail& to)
    : plan(of),
      trail(to),
      documents(makeDocuments(of.seed)),
      model(documents, trail),
      clock(std::make_shared<VirtualClock>(start, of.hasSummerTime ? TimeZone::device : TimeZone::utc)),
      servers(*this),
      traffic(of.checkInterval),
      suite_(store->open("quillon-cmp-sdk", {}).value()) {
  permissions->set(VantariKey::cameraUsageDescription, 0);
  publishEverywhere(documents.front());
}

void Surroundings::jump(std::chrono::milliseconds delta) {
  clock->jump(delta);
  jumped_ += delta;
}

std::int64_t Surroundings::elapsed() const {
  return wholeSeconds(clock->now() - jumped_);
}

StoreView Surroundings::view() const {
  return viewOf(*suite_->snapshot());
}

void Surroundings::tamper() {
  const bool isGranted = view().decision(1) == "granted";
  const auto done = suite_->update([&](const SuiteEntries&) {
    SuiteChanges changes;
    changes.emplace("1", std::string(isGranted ? "declined" : "granted"));
    return SuiteUpdate(std::move(changes));
  });
  if (!done) trail.fail(1, done.error());
}

bool Surroundings::wasStored(std::size_t since, int purpose, const std::string& status) const {
  const auto isIt = [&](const std::optional<std::string>& decision, const std::string& law) {
    return decision.value_or(law == "opt-in" ? "declined" : "granted") == status;
  };
  const Moment present{view(), model.mayBeRefused()};
  for (std::size_t i = since; i <= moments.size(); ++i) {
    const Moment& moment = i < moments.size() ? moments[i] : present;
    if (status == "declined" && moment.refused.contains(purpose)) return true;
    const auto decision = moment.store.decision(purpose);
    if (isIt(decision, moment.store.law)) return true;
    if (i == moments.size()) break;
    // An update may store the law first and derive decisions from it, so the next moment's law counts as well.
    const Moment& next = i + 1 < moments.size() ? moments[i + 1] : present;
    if (isIt(decision, next.store.law)) return true;
  }
  return false;
}

bool Surroundings::wasUndecided(std::size_t since, int purpose) const {
  const auto isUndecided = [&](const Moment& moment) { return !moment.store.decision(purpose); };
  return !view().decision(purpose) ||
         std::any_of(moments.begin() + static_cast<std::ptrdiff_t>(since), moments.end(), isUndecided);
}

std::optional<int> Surroundings::versionOnDisk() const {
  constexpr std::size_t longest = std::size_t{1} << 20;
  for (const char* name : {"/data/quillon-sdk-cdn.json", "/data/quillon-sdk-cdn-backup.json"}) {
    if (const auto bytes = files->read(name, longest)) return versionIn(*bytes);
  }
  return std::nullopt;
}

void Surroundings::errorLogged(const std::string& block) {
  // An application with nothing to answer gets these messages without any fault.
  const bool isTold = block.find("There is no configuration whose purposes could be answered") != std::string::npos ||
                      block.find("Something went wrong while recording default") != std::string::npos;
  if (!isDisturbed && !isTold) trail.fail(10, "an error without a fault: " + block);
}

void Surroundings::publishEverywhere(const Document& document) {
  for (const char* application : {"a", "b"}) {
    for (const char* channel : {"live", "draft"}) {
      const std::string folder = std::string(application) + "/" + channel + "/";
      if (plan.hasLanguageFiles) {
        servers.publish(folder + "config_en.json", &document);
        servers.publish(folder + "config_de.json", &document);
      } else {
        servers.publish(folder + "config.json", &document);
      }
    }
  }
}

}  // namespace quillon::sim
