#include "tests/sim/Model.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <utility>

namespace quillon::sim {
namespace {

const std::string granted = "granted";
const std::string declined = "declined";
const std::string withdrawn = "withdrawn";
const std::string explicitly = "CONSENT_EXPLICIT";
const std::string implicitly = "CONSENT_IMPLICIT";
const std::string noAction = "CONSENT_NO_ACTION";

std::string wordFor(const std::optional<std::string>& status) {
  return status.value_or("nothing");
}

// The status reported for an undecided purpose.
std::string defaultUnder(const std::string& law) {
  return law == textOf(Law::optIn) ? declined : granted;
}

bool isSame(const StoreView& before, const StoreView& after) {
  return before.decisions == after.decisions && before.given == after.given && before.answered == after.answered &&
         before.signalled == after.signalled;
}

std::int64_t monthsLater(std::int64_t seconds, int months) {
  using namespace std::chrono;
  const sys_seconds time{std::chrono::seconds(seconds)};
  const auto day = floor<days>(time);
  year_month_day date = year_month_day(day) + std::chrono::months(months);
  if (!date.ok()) date = date.year() / date.month() / last;
  return (sys_days(date) + (time - day)).time_since_epoch().count();
}

}  // namespace

std::set<Law> Model::lawsOf(const Document& document, const Life& life) {
  if (!document.hasBanner) return {};
  std::set<Law> laws;
  for (const auto& place : life.places) {
    const bool isThere = place == lawfulPlace;
    if (!isThere || !document.lawInPlace) laws.insert(document.law);
    if ((isThere || !place) && document.lawInPlace) laws.insert(*document.lawInPlace);
  }
  return laws;
}

std::set<int> Model::everywhere() const {
  std::set<int> versions;
  for (const auto& [owner, life] : lives_) versions.insert(life.versions.begin(), life.versions.end());
  return versions;
}

std::set<std::string> Model::lawsInForce() const {
  std::set<std::string> laws;
  for (const auto& [owner, life] : lives_) {
    for (const int version : life.versions) {
      for (const Law law : lawsOf(document(version), life)) laws.insert(textOf(law));
    }
  }
  return laws;
}

bool Model::allowsUndecided(const Life& life, int version, int purpose) const {
  const Document& terms = document(version);
  if (!terms.lists(purpose)) return false;
  return terms.isEssential(purpose) ||
         std::ranges::any_of(lawsOf(terms, life), [](Law law) { return law != Law::optIn; });
}

void Model::setUp(int owner, const SessionView& session) {
  Life& life = lives_.at(owner);
  applications_.insert(session.application);
  if (std::exchange(life.hasSession, true)) life.replaced = {life.session, mayMap(life)};
  if (life.isClosed) {
    life.session = session;
    life.isCertain = false;
    return;
  }
  const bool isSameApplication =
      life.isSetUp && life.session.application == session.application && life.session.channel == session.channel;
  if (!isSameApplication) {
    life.versions.clear();
    life.places.clear();
  }
  life.isSetUp = true;
  life.isCertain = false;
  life.session = session;
  life.places.insert(session.place);
  if (disk_) life.versions.insert(*disk_);
  if (session.bundled) life.versions.insert(*session.bundled);
}

void Model::delivered(int by, const std::string& url, int version) {
  // The requesting process saves the document, and any process may read it there before it is replaced.
  for (auto& [owner, life] : lives_) {
    if (!life.isSetUp) continue;
    if (owner != by) life.mayHaveBeenOvertaken = true;
    const std::string own = "/" + life.session.application + "/" + (owner == by ? life.session.channel + "/" : "");
    if (url.find(own) == std::string::npos) continue;
    life.versions.insert(version);
    life.isCertain = false;
  }
}

void Model::diskHolds(std::optional<int> version) {
  disk_ = version;
  if (!version) return;
  for (auto& [owner, life] : lives_) {
    if (life.isSetUp && life.versions.insert(*version).second) life.isCertain = false;
  }
}

void Model::settled(int owner) {
  Life& life = lives_.at(owner);
  if (applications_.size() > 1 || life.mayHaveBeenOvertaken) return;
  // Another process may have removed the document in force.
  if (!disk_ && (!life.session.bundled || lives_.size() > 1)) return;
  life.versions.clear();
  if (disk_) life.versions.insert(*disk_);
  // The bundled document is used as soon as the file is missing.
  if (life.session.bundled) life.versions.insert(*life.session.bundled);
  life.places = {life.session.place};
  life.isCertain = true;
}

bool Model::isDefault(int purpose, const std::string& status, const StoreView& before, const StoreView& after) const {
  std::set<std::string> laws = lawsInForce();
  // With several processes, one may record defaults under the compliance type that another has stored.
  if (lives_.size() > 1) laws.insert({before.law, after.law});
  const bool mayGrant =
      std::ranges::any_of(laws, [](const auto& law) { return !law.empty() && law != textOf(Law::optIn); });
  for (const int version : everywhere()) {
    const Document& terms = document(version);
    if (!terms.lists(purpose)) continue;
    if (status == granted && (terms.isEssential(purpose) || mayGrant)) return true;
    if (status == declined && laws.contains(textOf(Law::optIn)) && !terms.isEssential(purpose)) return true;
  }
  return false;
}

bool Model::isFollowingTracking(int purpose, const std::string& status) const {
  const auto binds = [&](int version) { return document(version).bindsToTracking; };
  if (purpose != trackedPurpose || std::ranges::none_of(everywhere(), binds)) return false;
  return isTrackingAuthorized_ ? status == granted : status == declined || status == withdrawn;
}

bool Model::isGivenByJobs(const StoreView& before, const StoreView& after) const {
  const auto versions = everywhere();
  std::set<std::string> reached{before.given};
  const auto asks = [&](int version) {
    return document(version).asksAgain && (version > before.version || *versions.begin() < version);
  };
  if (std::ranges::any_of(versions, asks)) reached.insert(noAction);
  if (reached.contains(noAction) && !lawsInForce().empty()) reached.insert(implicitly);
  // Documented: once the banner was shown, a default counts as an answer.
  if (reached.contains(implicitly) && (before.shown || after.shown)) reached.insert(explicitly);
  return reached.contains(after.given);
}

bool Model::isAnswerBy(const Document& at, const ActReport& act, const StoreView& before,
                       const StoreView& after) const {
  return std::ranges::all_of(purposes, [&](int purpose) {
    const auto status = after.decision(purpose);
    const auto choice = act.chosen.find(purpose);
    const bool isEssential = at.isEssential(purpose);
    const bool isMeant = act.effect == Effect::answer || isEssential || choice != act.chosen.end();
    if (!at.lists(purpose) || !isMeant) return status == before.decision(purpose);
    if (purpose == trackedPurpose && at.bindsToTracking) {
      return status && (isTrackingAuthorized_ ? *status == granted : *status == declined || *status == withdrawn);
    }
    if (isEssential) return status == granted;
    if (act.effect == Effect::save) return status == choice->second;
    return status == (act.accepts ? granted : declined);
  });
}

bool Model::isEffect(const ActReport& act, const StoreView& before, const StoreView& after) const {
  switch (act.effect) {
    case Effect::nothing:
      return isSame(before, after);
    case Effect::setUp:
      return after.given == before.given && isSetUp(before, after);
    case Effect::decision: {
      auto decisions = before.decisions;
      for (const auto& [purpose, status] : act.chosen) decisions[purpose] = status;
      return after.decisions == decisions && after.given == explicitly;
    }
    case Effect::answer:
    case Effect::save: {
      const auto isAnswer = [&](int version) { return isAnswerBy(document(version), act, before, after); };
      return after.given == explicitly && std::ranges::any_of(atHand(lives_.at(act.owner)), isAnswer);
    }
    case Effect::defaults:
      return (after.given == before.given || (before.given == noAction && after.given == implicitly)) &&
             std::ranges::all_of(purposes, [&](int purpose) {
               const auto status = after.decision(purpose);
               return status == before.decision(purpose) ||
                      (!before.decision(purpose) &&
                       (isDefault(purpose, *status, before, after) || isFollowingTracking(purpose, *status)));
             });
    case Effect::removal:
      return after.decisions.empty() && after.given == noAction;
    case Effect::bannerTest:
      return before.decisions == after.decisions && after.isBannerPresent && after.shown &&
             (after.given == before.given || (before.given == implicitly && after.given == explicitly));
  }
  return false;
}

void Model::judgeAct(const ActReport& act, const StoreView& before, const StoreView& after) {
  const bool isDone = isEffect(act, before, after);
  bool mayBeUndone = act.wasDisturbed || act.result == false;
  // Without a configuration there is nothing to answer. A closed process does not load one for a further set-up.
  const bool needsDocument =
      act.effect == Effect::answer || act.effect == Effect::save || act.effect == Effect::defaults;
  const bool mayLackOne = !disk_ || applications_.size() > 1 || lives_.at(act.owner).isClosed;
  if (needsDocument && !act.result && mayLackOne) mayBeUndone = true;
  // isBannerDue() may promote defaults to an answer even if it returns false.
  const bool isPromotion = act.effect == Effect::bannerTest && before.given == implicitly &&
                           after.given == explicitly && before.decisions == after.decisions;
  if (!(isDone && act.result != false) && !(mayBeUndone && (isSame(before, after) || isPromotion)) &&
      !(act.wasDisturbed && isDone)) {
    trail_.fail(1,
                "the act has not the effect that it must have: from " + described(before) + " to " + described(after));
  }
  if (act.effect == Effect::decision && act.result == false && !act.wasDisturbed) {
    trail_.fail(10, "a decision was not stored though nothing was wrong");
  }
  keepTold(act, before, after);
  if (!mayBeUndone || !isSame(before, after)) keepAnswers(act, after);
  forgetSignalled(before, after);
  judgeOwners(after);
  for (auto& [owner, life] : lives_) life.replaced.reset();
}

void Model::keepTold(const ActReport& act, const StoreView& before, const StoreView& after) {
  const bool isUsers = act.effect == Effect::decision || act.effect == Effect::answer || act.effect == Effect::save;
  if (act.effect == Effect::removal) {
    if (!after.decisions.empty()) return;
    told_.clear();
    answers_ = mayBeAnswers_ = std::set<int>();
    return;
  }
  if (act.wasDisturbed) {
    for (auto& [purpose, status] : told_) status = after.decision(purpose).value_or(status);
  } else if (isUsers && after.given == explicitly && act.result != false) {
    for (const auto& [purpose, status] : after.decisions) {
      const bool isChosen = act.effect == Effect::answer || act.chosen.contains(purpose);
      if (purpose != trackedPurpose && !after.signalled.contains(purpose) &&
          (isChosen || before.decision(purpose) != status))
        told_[purpose] = status;
    }
  }
}

void Model::judgeJobs(const StoreView& before, const StoreView& after) {
  for (const int purpose : purposes) {
    const auto from = before.decision(purpose);
    const auto to = after.decision(purpose);
    const bool isOwnerSame = before.signalled.contains(purpose) == after.signalled.contains(purpose);
    if (from == to && isOwnerSame) continue;
    const bool isRight =
        isSignalled(purpose, before, after) ||
        (to && isOwnerSame && (isFollowingTracking(purpose, *to) || (!from && isDefault(purpose, *to, before, after))));
    if (!isRight) {
      trail_.fail(2, "purpose " + std::to_string(purpose) + " became " + wordFor(to) + " after " + wordFor(from) +
                         ", which nobody decided");
    }
  }
  judgeOwners(after);
  forgetSignalled(before, after);
  for (const auto& [purpose, status] : told_) {
    if (after.decision(purpose) != status) {
      trail_.fail(1, "the user decided " + status + " on purpose " + std::to_string(purpose) + ", stored is " +
                         wordFor(after.decision(purpose)));
    }
  }
  if (!isGivenByJobs(before, after)) trail_.fail(5, "the given type became " + after.given + " after " + before.given);
  if (after.law != before.law && !lawsInForce().contains(after.law)) {
    trail_.fail(2, "no document in force is " + after.law);
  }
}

bool Model::isBannerDue(const StoreView& store, std::int64_t now, bool& isNear) const {
  constexpr std::int64_t hours = 3 * 3600;  // tolerance for changes to or from daylight-saving time
  const int months = monthsOf(store.interval);
  const std::int64_t expires = monthsLater(store.shown.value_or(now), months);
  isNear = months > 0 && std::abs(expires - now) < hours;
  const bool isPromoted = store.given == implicitly && store.shown.value_or(now) != now;
  const bool isAnswered = store.given == explicitly || isPromoted;
  return !store.isBannerPresent && !(isAnswered && expires > now);
}

void Model::judgeAnswers(int owner, const Answers& answers, const StoreView& store, std::int64_t now) {
  const Life& life = lives_.at(owner);
  const auto wrong = [&](int claim, int purpose, const std::string& what) {
    std::string versions;
    for (const int version : life.versions) versions += " " + std::to_string(version);
    trail_.fail(claim, what + " about purpose " + std::to_string(purpose) + " in process " + std::to_string(owner) +
                           ", stored is " + wordFor(store.decision(purpose)) + " under " + store.law +
                           ", it may have the documents" + versions);
  };
  for (const int purpose : purposes) {
    const auto decision = store.decision(purpose);
    const bool isAllowed = answers.isAllowed.at(purpose);
    if (answers.get.at(purpose) != decision.value_or(defaultUnder(store.law))) {
      wrong(1, purpose, "get says " + answers.get.at(purpose));
    }
    if (answers.isDecided.at(purpose) != decision.has_value()) wrong(1, purpose, "isDecided is wrong");
    const auto allows = [&](int version) { return allowsUndecided(life, version, purpose); };
    const auto binds = [&](int version) { return document(version).bindsToTracking; };
    const bool mayBe = decision ? decision == granted : !life.isClosed && std::ranges::any_of(life.versions, allows);
    if (isAllowed && !mayBe) wrong(2, purpose, "isAllowed says yes");
    if (isAllowed && isRefused(life, purpose)) wrong(2, purpose, "isAllowed says yes despite a privacy signal");
    const bool isTracked = purpose == trackedPurpose;
    if (isAllowed && isTracked && !isTrackingAuthorized_ && life.isCertain && !life.isClosed &&
        std::ranges::all_of(life.versions, binds)) {
      wrong(2, purpose, "isAllowed says yes without tracking");
    }
    if (!isAllowed && !isTracked && decision == granted && !mayBeRefused(life, purpose))
      wrong(1, purpose, "isAllowed says no");
  }
  if (answers.isQuiet && answers.isReady && life.versions.empty()) trail_.fail(10, "ready without any document");
  bool isNear = false;
  const bool isDue = isBannerDue(store, now, isNear);
  if (answers.isBannerDue && isBannerSettled(life, Sure::yes)) trail_.fail(6, "a signal settles the banner");
  if (answers.isBannerDue && (life.isClosed || life.versions.empty() || (!isDue && !isNear))) {
    trail_.fail(6, "the banner is due for no reason");
  }
  if (!answers.isBannerDue && isDue && !isNear && life.isCertain && !life.isClosed &&
      !isBannerSettled(life, Sure::no)) {
    trail_.fail(6, "the banner is due, and process " + std::to_string(owner) + " does not know");
  }
}

void Model::judgeSink(int owner, const std::map<std::string, std::string>& signals, const StoreView& store) {
  const auto found = signals.find("analytics_storage");
  if (found == signals.end() || found->second != granted) return;
  std::set<int> versions = everywhere();
  if (disk_) versions.insert(*disk_);
  const bool isRight = std::ranges::any_of(versions, [&](int version) {
    const auto& behind = document(version).analytics;
    return !behind.empty() && std::ranges::all_of(behind, [&](int purpose) {
      const auto decision = store.decision(purpose);
      if (isRefused(lives_.at(owner), purpose)) return false;
      return decision ? *decision == granted : !store.law.empty() && defaultUnder(store.law) == granted;
    });
  });
  if (!isRight) trail_.fail(2, "analytics was told of a consent that nobody gave");
}

void Model::uploadSent(int owner, const Upload& upload, const StoreView& store) {
  const std::string sender = "upload of process " + std::to_string(owner);
  for (const auto& [purpose, status] : upload.purposes) {
    if (status != store.decision(purpose).value_or(defaultUnder(store.law))) {
      trail_.fail(2, sender + " says " + status + " of purpose " + std::to_string(purpose) + ", stored is " +
                         wordFor(store.decision(purpose)));
    }
  }
  if (upload.isImplicit != (store.given != explicitly || !upload.signalled.empty()))
    trail_.fail(5, sender + " says how consents were given wrongly");
  judgeCauses(sender, upload, store);
  if (upload.subject.empty() || upload.subject != store.subject) trail_.fail(5, sender + " has another subject");
}

void Model::uploadTaken(const Upload& upload) {
  if (upload.number < lastTaken_) trail_.fail(4, "an earlier upload arrived after a later one");
  lastTaken_ = std::max(lastTaken_, upload.number);
  if (upload.subject != subjectOnServer_) onServer_.clear();
  subjectOnServer_ = upload.subject;
  for (const auto& [purpose, status] : upload.purposes) onServer_[purpose] = status;
}

void Model::judgeEnd(const Document& published, const StoreView& store) {
  if (store.hasUploadFailed) trail_.fail(4, "an upload still counts as failed");
  // Permissions are uploaded only together with the user's decisions.
  if (store.isAnyPermissionPending && store.given != noAction) trail_.fail(4, "permissions are still pending");
  if (store.subject != subjectOnServer_) onServer_.clear();
  for (const int purpose : purposes) {
    // So are decisions that follow tracking.
    if (!published.lists(purpose) || (purpose == trackedPurpose && store.given == noAction)) continue;
    if (std::ranges::find(store.pending, purpose) != store.pending.end()) {
      trail_.fail(4, "purpose " + std::to_string(purpose) + " is still pending");
    }
    const auto known = onServer_.find(purpose);
    const auto decision = store.decision(purpose);
    if (decision && (known == onServer_.end() || known->second != *decision)) {
      trail_.fail(4, "the server does not know that purpose " + std::to_string(purpose) + " is " + *decision);
    }
  }
}

}  // namespace quillon::sim
