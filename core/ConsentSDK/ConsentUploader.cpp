#include "core/ConsentSDK/ConsentUploader.h"

#include <algorithm>
#include <set>
#include <utility>

#include "core/ConsentSDK/SDKVersion.h"
#include "core/Logger/UnitLog.h"
#include "core/Persistance/UserDefaults/StoreKeys.h"

namespace quillon {
namespace {

constexpr std::string_view uploadFunction = "uploadConsents(url:request:)";
constexpr std::int64_t statusAccepted = 0;
constexpr std::int64_t statusFailed = 1;
constexpr std::chrono::seconds followUpDelay{1};
constexpr std::int64_t nothingRefused = -1;
constexpr int mostMissedTurns = 90;  // one a second

std::set<DecisionSubject> subjectsOf(const PostConsentsRequest& request) {
  std::set<DecisionSubject> subjects;
  for (const auto& purpose : request.purposeConsents) subjects.insert({.purposeId = purpose.purposeID});
  for (const auto& permission : request.permissions) subjects.insert({.permission = permission.permission});
  return subjects;
}

std::set<DecisionSubject> pendingSubjects(const StoredValues& stored) {
  std::set<DecisionSubject> subjects;
  for (const auto id : stored.pendingPurposes()) subjects.insert({.purposeId = id});
  for (const auto& name : stored.pendingPermissions()) subjects.insert({.permission = VantariKey(name)});
  return subjects;
}

std::int64_t numberOf(const NewestDecisions& decisions, const DecisionSubject& subject) {
  const auto found = decisions.find(subject);
  return found == decisions.end() ? 0 : found->second;
}

// Signal decisions must not be uploaded as the user's, so they go into a separate request. True when that request must
// follow.
bool keepBackSignals(PostConsentsRequest& request) {
  auto& consents = request.purposeConsents;
  const auto isSignals = [](const PurposeConsent& consent) { return consent.cause.has_value(); };
  if (request.implicitConsent || std::ranges::none_of(consents, isSignals)) return false;
  request.implicitConsent = std::ranges::all_of(consents, isSignals) && request.permissions.empty();
  if (request.implicitConsent) return false;
  std::erase_if(consents, isSignals);
  return true;
}

JournalRecord newestOf(const std::vector<JournalRecord>& unmarked) {
  return unmarked.empty() ? JournalRecord() : unmarked.front();
}

}  // namespace

void ConsentUploader::close() {
  std::unique_ptr<Timer> followUp;  // destroyed outside the lock: that may wait for its job
  const std::scoped_lock lock(mutex_);
  isScheduled_ = true;
  followUp.swap(followUp_);
}

bool ConsentUploader::acquireLock(std::unique_ptr<StoreLock>& turn) {
  turn = s_.platform.store->tryLock("uploads");
  const std::scoped_lock lock(mutex_);
  missedTurns_ = turn ? 0 : missedTurns_ + 1;
  return turn || missedTurns_ > mostMissedTurns;
}

Task<bool> ConsentUploader::uploadPending(Trigger trigger) {
  const auto session = s_.sessions.current();
  if (!session) co_return false;
  const bool isDone = co_await uploadInTurn(session, trigger);
  if (isDone) co_return true;
  // Permanently rejected decisions are not retried until something changes.
  const auto entries = s_.store.snapshot();
  const StoredValues stored(*entries);
  const bool isRefused = !stored.boolean(key::uploadConsentRequestPending) &&
                         stored.integer(key::uploadRefusedUpTo, nothingRefused) != nothingRefused;
  if (!isRefused) s_.leftPending();
  co_return false;
}

Task<bool> ConsentUploader::uploadInTurn(SessionPointer session, Trigger trigger) {
  const auto place = turns_.join();
  co_await place.turn();
  if (!StoredValues(*s_.store.snapshot()).isAnythingPending()) co_return true;
  const ConfigurationPointer configuration = s_.loader.current();
  if (!configuration) co_return false;

  std::unique_ptr<StoreLock> turn;
  if (!acquireLock(turn)) {
    schedule();
    co_return false;
  }
  for (;;) {
    const auto reading = read();
    if (!reading) co_return false;
    const StoredValues stored(*reading->entries);
    if (!stored.isAnythingPending()) co_return true;  // another process has uploaded it
    if (trigger == Trigger::automatic && !isDue(*reading, configuration)) co_return false;
    PostConsentsRequest upload = request(*session, stored, configuration);
    if (upload.uuid.empty()) {
      // Consents uploaded under an identifier that is not stored could not be attributed later. A check retries.
      s_.answered();
      co_return false;
    }
    const bool isAll = !keepBackSignals(upload);
    Sent sent{subjectsOf(upload), newestOf(reading->unmarked), upload.uuid};
    const bool isAccepted = co_await send(session->options.appUrl, std::move(upload), std::move(sent));
    if (!isAccepted || isAll) co_return isAccepted;
  }
}

Task<void> ConsentUploader::upload(std::string url, PostConsentsRequest request) {
  if (!request.sdkVersion) request.sdkVersion = installedSDKVersion(*s_.platform.host);
  const auto place = turns_.join();
  co_await place.turn();
  std::unique_ptr<StoreLock> turn;
  acquireLock(turn);  // sent in any case: the application decides when
  Sent sent;
  if (const auto reading = s_.store.read(1)) {
    const StoredValues stored(*reading->entries);
    sent = {pendingSubjects(stored), newestOf(reading->unmarked), stored.string(key::subjectId, {})};
  }
  co_await send(std::move(url), std::move(request), std::move(sent));
}

PostConsentsRequest ConsentUploader::request(const Session& session, const StoredValues& stored,
                                             const ConfigurationPointer& configuration) {
  const bool isTracked =
      stored.boolean(key::isATTEnabled) && s_.platform.tracking->authorization() == TrackingAuthorization::authorized;
  PostConsentsRequest request;
  request.uuid = s_.store.getSubjectId();
  request.appUUID = session.options.appId;
  request.device = s_.platform.host->deviceDescription();
  request.implicitConsent = stored.consentGivenType() != GivenType::explicitly;
  request.version = stored.integer(key::configurationVersion, 0);
  request.purposeConsents = s_.loader.purposes(configuration).pendingConsents(stored);
  request.permissions = s_.loader.permissions(configuration).pendingConsents(stored);
  request.testingMode = session.options.testingMode;
  if (isTracked) request.adId = s_.platform.tracking->advertisingIdentifier().value_or("");
  request.bannerInfo = std::string(rawValue(stored.complianceType()));
  request.sdkVersion = installedSDKVersion(*s_.platform.host);
  return request;
}

Task<bool> ConsentUploader::send(std::string url, PostConsentsRequest request, Sent sent) {
  const UnitLog log(s_.logger, unit::networkAPIs);
  const auto now = [this] { return wholeSeconds(s_.platform.clock->now()); };
  const auto answer = co_await s_.server.postConsents(std::move(url), request);
  if (!answer) {
    s_.store.set(key::uploadConsentRequestPending, true);
    const std::string problem = description(answer.error());
    log(s_.work.isClosed() ? LogLevel::debug : LogLevel::error, problem, uploadFunction);
    s_.events.uploads.notify({false, std::nullopt, problem, now()});
    s_.answered();
    co_return false;
  }
  const GenericResponse& response = answer->value;
  applyAnswer(response, request, sent);
  const bool isAccepted = response.status == statusAccepted;
  log(response.status == statusFailed ? LogLevel::error : LogLevel::info, escapedForLog(response.message),
      uploadFunction);
  s_.events.uploads.notify({isAccepted, response.status, response.message, now()});
  if (isAccepted) s_.answered();
  co_return isAccepted;
}

bool ConsentUploader::isOfSameHistory(const Sent& sent, const StoredValues& stored,
                                      const std::vector<JournalRecord>& unmarked) {
  if (stored.string(key::subjectId, {}) != sent.subject) return false;
  return sent.newest.number == 0 || std::ranges::find(unmarked, sent.newest) != unmarked.end();
}

void ConsentUploader::applyAnswer(const GenericResponse& response, const PostConsentsRequest& request,
                                  const Sent& sent) {
  s_.store.markOutcomes([&](StoreTransaction& transaction, const std::vector<JournalRecord>& unmarked) {
    if (!isOfSameHistory(sent, transaction, unmarked)) return;  // the stored decisions are not those sent
    transaction.set(key::uploadConsentRequestPending, response.status == statusFailed);
    if (response.status != statusAccepted && response.status != statusFailed) {
      transaction.set(key::uploadRefusedUpTo, sent.newest.number);
    }
    if (response.status != statusAccepted) return;
    transaction.remove(key::uploadRefusedUpTo);
    // Decisions made during the upload, and those it did not carry, stay pending.
    const NewestDecisions newest = newestDecisions(unmarked);
    const auto wasSent = [&](const DecisionSubject& subject) {
      return sent.subjects.contains(subject) && numberOf(newest, subject) <= sent.newest.number;
    };
    auto purposes = transaction.pendingPurposes();
    std::erase_if(purposes, [&](std::int64_t id) { return wasSent({.purposeId = id}); });
    transaction.set(key::pendingPurposesList, std::move(purposes));
    auto permissions = transaction.pendingPermissions();
    std::erase_if(permissions, [&](const std::string& name) { return wasSent({.permission = VantariKey(name)}); });
    transaction.set(key::pendingPermissionsList, std::move(permissions));

    for (const auto& [number, outcome] : outcomesOf(unmarked, sent.newest.number, sent.subjects, subjectsOf(request))) {
      transaction.mark(number, rawValue(outcome));
    }
  });
}

bool ConsentUploader::isUploadDue(const ConfigurationPointer& configuration) const {
  const auto entries = s_.store.snapshot();
  const StoredValues stored(*entries);
  if (stored.boolean(key::uploadConsentRequestPending)) return true;
  if (pendingSubjects(stored).empty()) return false;
  const auto reading = read();
  return reading && isDue(*reading, configuration);
}

std::optional<SuiteReading> ConsentUploader::read() const {
  auto reading = s_.store.read(1);
  // Only the numbers of all decisions show which were rejected.
  const bool wasRejected =
      reading && StoredValues(*reading->entries).integer(key::uploadRefusedUpTo, nothingRefused) != nothingRefused;
  return wasRejected ? s_.store.read(maximumJournalRecords) : std::move(reading);
}

bool ConsentUploader::isDue(const SuiteReading& reading, const ConfigurationPointer& configuration) const {
  const StoredValues stored(*reading.entries);
  if (stored.boolean(key::uploadConsentRequestPending)) return true;
  std::int64_t refused = stored.integer(key::uploadRefusedUpTo, nothingRefused);
  const NewestDecisions newest = newestDecisions(reading.unmarked);
  // A number above every existing one was never rejected; accepting it would stop uploads from this process for good.
  if (std::ranges::none_of(newest, [&](const auto& decision) { return decision.second >= refused; })) {
    refused = nothingRefused;
  }
  std::set<DecisionSubject> listed;
  for (const Purpose& purpose : s_.loader.purposes(configuration).purposes()) {
    if (purpose.purposeId) listed.insert({.purposeId = purpose.purposeId});
  }
  return std::ranges::any_of(pendingSubjects(stored), [&](const DecisionSubject& subject) {
    return (subject.permission || listed.contains(subject)) && numberOf(newest, subject) > refused;
  });
}

void ConsentUploader::schedule() {
  std::uint64_t number = 0;
  {
    const std::scoped_lock lock(mutex_);
    if (std::exchange(isScheduled_, true)) return;
    number = ++number_;
  }
  const auto upload = [this] {
    {
      const std::scoped_lock lock(mutex_);
      isScheduled_ = false;
    }
    s_.work.start([this]() -> Task<void> { co_await uploadPending(Trigger::automatic); });
  };
  auto timer = s_.platform.clock->after(followUpDelay, s_.work.whileAlive(upload));
  const std::scoped_lock lock(mutex_);
  if (!timer) isScheduled_ = false;  // the next decision tries again; a check uploads in any case
  // If this thread was delayed until the timer fired, it must not replace a later timer.
  if (number == number_) followUp_.swap(timer);
}

}  // namespace quillon
