#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "platform/Platform.h"
#include "platform/memory/MemoryFileSystem.h"
#include "platform/memory/MemoryStore.h"
#include "quillon/ConsentSDK.h"

namespace quillon::fleet {

// One device with one application that stays open, and a user of it who answers the banner once and changes his mind
// now and then. Store and files are the device's own; what it shares with the others is in the platform it is made of.
class FleetDevice {
 public:
  // What happens at which second of the simulation.
  struct Event {
    std::chrono::seconds at;
    std::function<void()> run;
  };

  // The same number behaves the same in every run.
  FleetDevice(std::uint32_t number, const Platform& shared, ConsentSDKOptions options)
      : random_(number), options_(std::move(options)), sdk_(withOwnStorage(shared)) {
    options_.subjectId = "device-" + std::to_string(number);
  }

  // The life of the device in the given time: a start within the first `startsWithin`, an answer to the banner within
  // the five minutes after it, and that many changes of one purpose at any time. A minute is between two acts of a
  // user, so that each finds the one before it done.
  std::vector<Event> plan(std::chrono::seconds startsWithin, std::chrono::seconds duration, int changes) {
    using std::chrono::minutes;
    const auto within = [this](std::chrono::seconds from, std::chrono::seconds to) {
      return std::chrono::seconds(std::uniform_int_distribution<std::int64_t>(from.count(), to.count())(random_));
    };
    const auto start = within(std::chrono::seconds(0), startsWithin - std::chrono::seconds(1));
    const auto answered = start + within(minutes(1), minutes(5));
    std::vector<Event> events{{start, [this] { sdk_.setup(options_); }}, {answered, [this] { answer(); }}};
    for (int change = 0; change < changes; ++change) {
      events.push_back({within(answered + minutes(1), duration), [this] { changeMind(); }});
    }
    return events;
  }

  const std::string& subject() const { return *options_.subjectId; }

  // What the device says at present about each purpose that the user has decided on.
  std::map<std::int64_t, ConsentStatus> statuses() const {
    std::map<std::int64_t, ConsentStatus> statuses;
    for (const std::int64_t id : purposes_) statuses.emplace(id, sdk_.get(id));
    return statuses;
  }
  // How often the user has decided on a purpose.
  std::int64_t decisionCount() const { return decisionCount_; }
  // Purposes whose status is not what the user chose last.
  std::int64_t contradictions() const {
    std::int64_t count = 0;
    for (const auto& [id, status] : chosen_) count += sdk_.get(id) != status;
    return count;
  }

 private:
  static Platform withOwnStorage(Platform platform) {
    platform.files = std::make_shared<MemoryFileSystem>("/data");
    platform.store = std::make_shared<MemoryStore>();
    return platform;
  }

  // Three in five accept.
  void answer() {
    const bool accept = std::bernoulli_distribution(0.6)(random_);
    sdk_.getPurposeConsents([this](const std::vector<Purpose>& purposes) {
      for (const Purpose& purpose : purposes) {
        if (!purpose.purposeId) continue;
        purposes_.push_back(*purpose.purposeId);
        if (!purpose.isATTMapped.value_or(false)) free_.push_back(*purpose.purposeId);
      }
    });
    sdk_.acceptOrReject(accept, [this](bool stored) {
      if (stored) decisionCount_ += static_cast<std::int64_t>(purposes_.size());
    });
  }

  void changeMind() {
    if (free_.empty()) return;
    Purpose purpose;
    purpose.purposeId = free_[std::uniform_int_distribution<std::size_t>(0, free_.size() - 1)(random_)];
    const bool granted = sdk_.get(*purpose.purposeId) == ConsentStatus::granted;
    const ConsentStatus status = granted ? ConsentStatus::declined : ConsentStatus::granted;
    if (!sdk_.set(purpose, status)) return;
    chosen_[*purpose.purposeId] = status;
    ++decisionCount_;
  }

  std::mt19937 random_;
  ConsentSDKOptions options_;
  ConsentSDK sdk_;
  std::map<std::int64_t, ConsentStatus> chosen_;  // after the answer, by set()
  std::vector<std::int64_t> purposes_;            // all that the answer was about
  std::vector<std::int64_t> free_;                // those that app tracking does not govern
  std::int64_t decisionCount_ = 0;
};

}  // namespace quillon::fleet
