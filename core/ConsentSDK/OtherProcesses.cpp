#include "core/ConsentSDK/OtherProcesses.h"

#include <algorithm>
#include <limits>
#include <set>
#include <utility>

namespace quillon {
namespace {

std::optional<ConsentStatus> statusOf(const std::map<DecisionSubject, ConsentStatus>& consents,
                                      const DecisionSubject& subject) {
  const auto found = consents.find(subject);
  return found == consents.end() ? std::nullopt : std::optional(found->second);
}

}  // namespace

void OtherProcesses::begin() {
  {
    const std::scoped_lock lock(mutex_);
    if (std::exchange(isObserving_, true)) return;
  }
  Consents present = StoredValues(*s_.store.snapshot()).consents();
  {
    const std::scoped_lock lock(mutex_);
    present.merge(told_);
    told_ = std::move(present);
  }
  auto subscription = s_.store.observe(s_.work.whileAlive([this] { s_.work.run([this] { compare(); }); }));
  const std::scoped_lock lock(mutex_);
  if (!s_.work.isClosed()) subscription_.swap(subscription);
}

void OtherProcesses::close() {
  std::unique_ptr<SuiteSubscription> subscription;  // Dropped outside the lock: that may wait for its handler.
  const std::scoped_lock lock(mutex_);
  subscription.swap(subscription_);
}

void OtherProcesses::note(const std::vector<Decision>& decisions) {
  const std::scoped_lock lock(mutex_);
  for (const Decision& decision : decisions) {
    const DecisionSubject subject{decision.purposeId, decision.permission};
    if (decision.cause == DecisionCause::removed) {
      told_.erase(subject);
    } else {
      told_.insert_or_assign(subject, decision.to);
    }
  }
}

void OtherProcesses::compare() {
  constexpr std::size_t pageSize = 500;
  Consents present = StoredValues(*s_.store.snapshot()).consents();
  const HistoryPage history = s_.store.history(std::numeric_limits<std::int64_t>::max(), pageSize);
  std::vector<Decision> decisions;
  {
    const std::scoped_lock lock(mutex_);
    std::set<DecisionSubject> subjects;
    for (const auto& [subject, status] : told_) subjects.insert(subject);
    for (const auto& [subject, status] : present) subjects.insert(subject);
    for (const auto& subject : subjects) {
      const auto from = statusOf(told_, subject);
      const auto to = statusOf(present, subject);
      if (from != to) decisions.push_back(decisionOn(subject, from, to, history));
    }
    told_ = std::move(present);
  }
  s_.events.announce(std::move(decisions))();
  s_.changed();
}

Decision OtherProcesses::decisionOn(const DecisionSubject& subject, std::optional<ConsentStatus> from,
                                    std::optional<ConsentStatus> to, const HistoryPage& history) const {
  const auto isIt = [&](const HistoryEntry& entry) {
    return entry.decision.purposeId == subject.purposeId && entry.decision.permission == subject.permission &&
           entry.decision.to == to;
  };
  const auto entry = std::ranges::find_if(history.entries, isIt);
  Decision decision;
  if (entry != history.entries.end()) decision = entry->decision;
  if (entry == history.entries.end()) decision.time = wholeSeconds(s_.platform.clock->now());
  if (!to) decision.cause = DecisionCause::removed;
  decision.purposeId = subject.purposeId;
  decision.permission = subject.permission;
  decision.from = from;
  decision.to = to.value_or(ConsentStatus::notDetermined);
  return decision;
}

}  // namespace quillon
