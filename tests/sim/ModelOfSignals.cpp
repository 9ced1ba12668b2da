// The invariants of privacy signals, as docs/signals.md states them.
#include <algorithm>

#include "tests/sim/Model.h"

namespace quillon::sim {

std::set<int> Model::atHand(const Life& life) const {
  std::set<int> versions = life.versions;
  if (disk_) versions.insert(*disk_);
  if (life.session.bundled) versions.insert(*life.session.bundled);
  return versions;
}

std::set<int> Model::mayMap(const Life& life) const {
  std::set<int> versions = atHand(life);
  // A document saved by another process may be read before the model is notified.
  if (!life.isCertain || life.mayHaveBeenOvertaken) versions.merge(everywhere());
  return versions;
}

bool Model::isRefused(const Life& life, int purpose) const {
  const auto refuses = [&](const SessionView& session, const std::set<int>& versions) {
    if (!session.signals || !(session.signals->isGiven || isSignalOn_)) return false;
    const auto& named = session.signals->purposes;
    const bool isNamed = !named || std::ranges::find(*named, purpose) != named->end();
    return isNamed && std::ranges::all_of(versions, [&](int at) { return document(at).isSignalled(purpose, named); });
  };
  return !mayBeAnswers_.contains(purpose) && refuses(life.session, mayMap(life)) &&
         (!life.replaced || refuses(life.replaced->session, life.replaced->versions));
}

bool Model::mayBeRefused(const Life& life, int purpose) const {
  const auto mayRefuse = [&](const SessionView& session, const std::set<int>& versions) {
    if (!session.signals || !(session.signals->isGiven || isSignalOn_)) return false;
    const auto& named = session.signals->purposes;
    const auto stands = [&](int at) { return document(at).isSignalled(purpose, named); };
    // The signal covers all purposes until a configuration defines them.
    const bool isUnknown = !life.isCertain && (!named || std::ranges::find(*named, purpose) != named->end());
    return isUnknown || std::ranges::any_of(versions, stands);
  };
  return !answers_.contains(purpose) && (mayRefuse(life.session, mayMap(life)) ||
                                         (life.replaced && mayRefuse(life.replaced->session, life.replaced->versions)));
}

std::set<int> Model::mayBeRefused() const {
  std::set<int> refused;
  for (const int purpose : purposes) {
    if (mayRecord(purpose)) refused.insert(purpose);
  }
  return refused;
}

bool Model::mayRecord(int purpose) const {
  return std::ranges::any_of(lives_, [&](const auto& life) { return mayBeRefused(life.second, purpose); });
}

bool Model::mayEnd(int purpose) const {
  return std::ranges::any_of(
      lives_, [&](const auto& life) { return life.second.hasSession && !isRefused(life.second, purpose); });
}

bool Model::isSignalled(int purpose, const StoreView& before, const StoreView& after) const {
  const auto to = after.decision(purpose);
  const bool wasSignalled = before.signalled.contains(purpose);
  if (after.signalled.contains(purpose)) return to == "declined" && (wasSignalled || mayRecord(purpose));
  if (!(wasSignalled || mayRecord(purpose)) || !mayEnd(purpose)) return false;
  return !to || isDefault(purpose, *to, before, after) || isFollowingTracking(purpose, *to);
}

bool Model::isSetUp(const StoreView& before, const StoreView& after) const {
  return std::ranges::all_of(purposes, [&](int purpose) {
    const bool isOwnerSame = before.signalled.contains(purpose) == after.signalled.contains(purpose);
    const bool isLeft = isOwnerSame && before.decision(purpose) == after.decision(purpose);
    return isLeft || isSignalled(purpose, before, after);
  });
}

bool Model::isBannerSettled(const Life& life, Sure sure) const {
  const auto isSettled = [&](int version) {
    const Document& terms = document(version);
    bool asks = false;
    for (const int purpose : terms.listed) {
      if (terms.isEssential(purpose) || (terms.bindsToTracking && purpose == trackedPurpose)) continue;
      if (!(sure == Sure::yes ? isRefused(life, purpose) : mayBeRefused(life, purpose))) return false;
      asks = true;
    }
    return asks;
  };
  return sure == Sure::yes ? std::ranges::all_of(life.versions, isSettled)
                           : std::ranges::any_of(life.versions, isSettled);
}

void Model::keepAnswers(const ActReport& act, const StoreView& after) {
  if (act.effect != Effect::decision && act.effect != Effect::answer && act.effect != Effect::save) return;
  const std::set<int> versions = atHand(lives_.at(act.owner));
  for (const auto& [purpose, status] : after.decisions) {
    const bool isOnScreen = act.effect != Effect::decision;
    const bool isMeant = act.effect == Effect::answer || act.chosen.contains(purpose);
    if (isMeant) mayBeAnswers_.insert(purpose);
    const auto lists = [&](int at) { return document(at).lists(purpose); };
    const auto isEssential = [&](int at) { return document(at).isEssential(purpose); };
    if (isOnScreen && std::ranges::any_of(versions, isEssential)) {
      answers_.erase(purpose);
    } else if (isMeant && !act.wasDisturbed && purpose != trackedPurpose &&
               (!isOnScreen || std::ranges::all_of(versions, lists))) {
      answers_.insert(purpose);
    }
  }
}

void Model::forgetSignalled(const StoreView& before, const StoreView& after) {
  std::erase_if(told_, [&](const auto& told) {
    const auto& [purpose, status] = told;
    return !answers_.contains(purpose) && after.decision(purpose) != status && isSignalled(purpose, before, after);
  });
}

void Model::judgeCauses(const std::string& sender, const Upload& upload, const StoreView& store) {
  for (const auto& [purpose, status] : upload.purposes) {
    if (upload.signalled.contains(purpose) == store.signalled.contains(purpose)) continue;
    trail_.fail(5, sender + " names the cause of purpose " + std::to_string(purpose) + " wrongly");
  }
}

void Model::judgeOwners(const StoreView& store) {
  for (const int purpose : purposes) {
    const std::string what = "purpose " + std::to_string(purpose);
    if (store.signalled.contains(purpose) && (store.decision(purpose) != "declined" || answers_.contains(purpose))) {
      trail_.fail(2, what + " is said to be a signal's");
    }
    if (store.answered.contains(purpose) && !mayBeAnswers_.contains(purpose)) {
      trail_.fail(5, what + " passes for an answer of the user");
    }
    if (!store.answered.contains(purpose) && answers_.contains(purpose)) {
      trail_.fail(1, what + " does not count as answered by the user");
    }
  }
}

void Model::judgeTold(int owner, const std::map<std::string, std::string>& signals) {
  const Life& life = lives_.at(owner);
  const auto told = signals.find("analytics_storage");
  if (told == signals.end() || told->second != "granted" || life.versions.empty()) return;
  const auto refuses = [&](int version) {
    const auto& behind = document(version).analytics;
    return std::ranges::any_of(behind, [&](int purpose) { return isRefused(life, purpose); });
  };
  if (std::ranges::all_of(life.versions, refuses)) trail_.fail(2, "analytics was not told that a signal refuses");
}

void Model::judgeSignals(int owner, const StoreView& store) {
  const Life& life = lives_.at(owner);
  if (!life.isSetUp || life.isClosed || !life.isCertain) return;
  for (const int purpose : purposes) {
    const std::string what = "the signal's decision on purpose " + std::to_string(purpose);
    const bool isListed = std::ranges::all_of(life.versions, [&](int at) { return document(at).lists(purpose); });
    const bool isStored = store.signalled.contains(purpose);
    if (isStored && !mayRecord(purpose)) trail_.fail(1, what + " has not ended");
    // After another process removes the decision, the next load or start records it again.
    if (!isStored && isListed && !mayEnd(purpose) && lives_.size() == 1) trail_.fail(1, what + " is not stored");
  }
}

}  // namespace quillon::sim
