#include "tests/fleet/FleetDevice.h"

#include <utility>

#include "platform/memory/MemoryFileSystem.h"
#include "platform/memory/MemoryStore.h"

namespace quillon::fleet {
namespace {

constexpr double kAccepting = 0.6;  // of those who answer the banner
constexpr std::chrono::minutes kAnswersWithin{5};
// Between two acts of a user, so that each finds the one before it done.
constexpr std::chrono::minutes kPause{1};

Platform withOwnStorage(Platform platform) {
  platform.files = std::make_shared<MemoryFileSystem>("/data");
  platform.store = std::make_shared<MemoryStore>();
  return platform;
}

}  // namespace

FleetDevice::FleetDevice(std::uint32_t number, const Platform& shared, ConsentSDKOptions options)
    : random_(number), options_(std::move(options)), sdk_(withOwnStorage(shared)) {
  options_.subjectId = "device-" + std::to_string(number);
}

std::vector<FleetDevice::Event> FleetDevice::plan(std::chrono::seconds startsWithin, std::chrono::seconds duration,
                                                  int changes) {
  const auto within = [this](std::chrono::seconds from, std::chrono::seconds to) {
    return std::chrono::seconds(std::uniform_int_distribution<std::int64_t>(from.count(), to.count())(random_));
  };
  const auto start = within(std::chrono::seconds(0), startsWithin - std::chrono::seconds(1));
  const auto answered = start + within(kPause, kAnswersWithin);
  std::vector<Event> events;
  events.push_back({start, [this] { sdk_.setup(options_); }});
  events.push_back({answered, [this] { answer(); }});
  for (int change = 0; change < changes; ++change) {
    events.push_back({within(answered + kPause, duration), [this] { changeMind(); }});
  }
  return events;
}

void FleetDevice::answer() {
  const bool accept = std::bernoulli_distribution(kAccepting)(random_);
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

void FleetDevice::changeMind() {
  if (free_.empty()) return;
  Purpose purpose;
  purpose.purposeId = free_[std::uniform_int_distribution<std::size_t>(0, free_.size() - 1)(random_)];
  const bool granted = sdk_.get(*purpose.purposeId) == ConsentStatus::granted;
  const ConsentStatus status = granted ? ConsentStatus::declined : ConsentStatus::granted;
  if (!sdk_.set(purpose, status)) return;
  chosen_[*purpose.purposeId] = status;
  ++decisionCount_;
}

std::map<std::int64_t, ConsentStatus> FleetDevice::statuses() const {
  std::map<std::int64_t, ConsentStatus> statuses;
  for (const std::int64_t id : purposes_) statuses.emplace(id, sdk_.get(id));
  return statuses;
}

std::int64_t FleetDevice::contradictions() const {
  std::int64_t count = 0;
  for (const auto& [id, status] : chosen_) count += sdk_.get(id) != status;
  return count;
}

}  // namespace quillon::fleet
