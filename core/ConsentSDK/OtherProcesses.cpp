#include "core/ConsentSDK/OtherProcesses.h"

#include <algorithm>
#include <limits>
#include <set>
#include <utility>

namespace quillon {
namespace {

using Consents = std::map<DecisionSubject, std::optional<ConsentStatus>>;

std::optional<ConsentStatus> statusOf(const Consents& consents, const DecisionSubject& subject) {
  const auto found = consents.find(subject);
  return found == consents.end() ? std::nullopt : found->second;
}

Consents storedIn(const SuiteEntries& entries) {
  const auto stored = StoredValues(entries).consents();
  return {stored.begin(), stored.end()};
}

std::set<DecisionSubject> differing(const Consents& left, const Consents& right) {
  std::set<DecisionSubject> subjects;
  for (const auto* consents : {&left, &right}) {
    for (const auto& [subject, status] : *consents) {
      if (statusOf(left, subject) != statusOf(right, subject)) subjects.insert(subject);
    }
  }
  return subjects;
}

}  // namespace

void OtherProcesses::begin() {
  {
    const std::scoped_lock lock(mutex_);
    if (std::exchange(isObserving_, true)) return;
  }
  {
    // Stored consents count as reported, except where this process has reported something else.
    Consents present = storedIn(*s_.store.snapshot());
    const std::scoped_lock lock(mutex_);
    reported_.merge(present);
  }
  auto subscription = s_.store.observe(s_.work.whileAlive([this] { s_.work.run([this] { compare(); }); }));
  {
    const std::scoped_lock lock(mutex_);
    if (!s_.work.isClosed()) subscription_.swap(subscription);
  }
  compareIfDifferent();  // another process may have committed before observe()
}

void OtherProcesses::compareIfDifferent() {
  const Consents present = storedIn(*s_.store.snapshot());
  {
    const std::scoped_lock lock(mutex_);
    std::erase_if(reported_, [](const auto& consent) { return !consent.second; });
    if (present == reported_) return;
  }
  compare();
}

void OtherProcesses::close() {
  std::unique_ptr<SuiteSubscription> subscription;  // destroyed outside the lock: that may wait for its handler
  const std::scoped_lock lock(mutex_);
  subscription.swap(subscription_);
}

void OtherProcesses::addOwn(const std::vector<Decision>& decisions) {
  const std::scoped_lock lock(mutex_);
  for (const Decision& decision : decisions) {
    // Not announced, since the status was stored already. If another process stored it, compare() reports it.
    if (!Events::isChange(decision)) continue;
    const DecisionSubject subject{decision.purposeId, decision.permission};
    if (decision.cause == DecisionCause::removed) {
      reported_[subject] = std::nullopt;
    } else {
      reported_.insert_or_assign(subject, decision.to);
    }
  }
}

void OtherProcesses::compare() {
  constexpr std::size_t pageSize = 500;
  Consents present = storedIn(*s_.store.snapshot());
  std::optional<HistoryPage> history;  // read only when something differs, as reading it is slow
  std::vector<Decision> decisions;
  for (;;) {
    {
      const std::scoped_lock lock(mutex_);
      const auto subjects = differing(reported_, present);
      if (subjects.empty() || history) {
        for (const auto& subject : subjects) {
          decisions.push_back(decisionOn(subject, statusOf(reported_, subject), statusOf(present, subject), *history));
        }
        reported_ = std::move(present);
        break;
      }
    }
    history = s_.store.history(std::numeric_limits<std::int64_t>::max(), pageSize);
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
