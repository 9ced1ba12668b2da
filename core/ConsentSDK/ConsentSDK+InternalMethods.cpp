#include <algorithm>
#include <limits>

#include "core/ConsentSDK/CheckCycle.h"
#include "core/Persistance/UserDefaults/StoreKeys.h"

namespace quillon {
namespace {

using namespace std::chrono_literals;

constexpr std::chrono::seconds periodWithoutOptions = 1800s;
constexpr std::chrono::seconds firstRetry = 15s;
// Spreads the checks of devices that regain the network together.
constexpr std::chrono::seconds longestReconnectionDelay = 60s;

std::chrono::milliseconds periodOf(const SessionPointer& session) {
  return session ? std::chrono::seconds(session->options.consentsCheckInterval.count()) : periodWithoutOptions;
}

bool isSignalPending(const SuiteEntries& entries) {
  const StoredValues stored(entries);
  return std::ranges::any_of(stored.pendingPurposes(), [&](auto id) { return stored.isDecidedBySignal(id); });
}

}  // namespace

void CheckCycle::begin(SessionPointer session) {
  std::unique_ptr<Timer> retry;  // destroyed outside the lock, as below: that may wait for its job
  {
    const std::scoped_lock lock(mutex_);
    retry.swap(retry_);
    retries_ = 0;
  }
  s_.work.start([this, session = std::move(session)]() -> Task<void> { co_await follow(session); });
}

Task<void> CheckCycle::follow(SessionPointer session) {
  const auto left = s_.store.snapshot();
  const bool wasPending = StoredValues(*left).isAnythingPending();
  const bool isUploadOwed =
      StoredValues(*left).boolean(key::uploadConsentRequestPending) || !StoredValues(*left).pendingPurposes().empty();
  const auto loaded = co_await s_.loader.load();
  if (!s_.sessions.isCurrent(*session)) co_return;
  const bool isAnswered = StoredValues(*s_.store.snapshot()).consentGivenType() != GivenType::noAction;
  if (isAnswered) startRecurringCheck();
  startNetworkMonitor();
  startPermissionObservation();
  s_.others.begin();
  s_.events.gates.update();  // another process may have decided while this one was loading
  if (!loaded.configuration) {
    scheduleRetry(session);
    co_return;
  }
  reportDueBanner();
  // Uploads what an earlier run left pending, and what a privacy signal decided during the load, without waiting for
  // the first period, or for the next answer if the configuration asks again. Permission states that were never sent
  // wait for the first answer.
  if ((wasPending && (isAnswered || isUploadOwed)) || isSignalPending(*s_.store.snapshot()))
    co_await s_.uploader.uploadPending(ConsentUploader::Trigger::automatic);
}

void CheckCycle::close() {
  std::unique_ptr<Timer> timers[3];
  std::unique_ptr<NetworkSubscription> monitor;
  std::unique_ptr<PermissionSubscription> permissionObservation;
  std::unique_ptr<PrivacySignalSubscription> signalObservation;
  const std::scoped_lock lock(mutex_);
  timers[0] = std::move(recurring_);
  timers[1] = std::move(reconnected_);
  timers[2] = std::move(retry_);
  monitor = std::move(monitor_);
  permissionObservation = std::move(permissionObservation_);
  signalObservation = std::move(signalObservation_);
}

void CheckCycle::startRecurringCheck() {
  auto timer = s_.platform.clock->every(periodOf(s_.sessions.current()), s_.work.whileAlive([this] { startCheck(); }));
  const std::scoped_lock lock(mutex_);
  if (!s_.work.isClosed()) recurring_.swap(timer);
}

void CheckCycle::watchAnswered() {
  {
    const std::scoped_lock lock(mutex_);
    if (recurring_) return;
  }
  if (StoredValues(*s_.store.snapshot()).consentGivenType() != GivenType::noAction) startRecurringCheck();
}

void CheckCycle::startCheck() {
  s_.work.start([this]() -> Task<void> { co_await check(); });
}

Task<void> CheckCycle::check() {
  std::shared_ptr<TaskEvent> over;
  {
    const std::scoped_lock lock(mutex_);
    if (!inFlight_) {
      inFlight_ = std::make_shared<TaskEvent>();
    } else {
      over = inFlight_;
    }
  }
  if (over) {
    co_await over->wait();
    co_return;
  }
  // Signals also when the task is dropped or fails.
  const std::shared_ptr<void> end(nullptr, [this](void*) {
    std::shared_ptr<TaskEvent> ended;
    {
      const std::scoped_lock lock(mutex_);
      ended = std::exchange(inFlight_, nullptr);
    }
    ended->signal();
  });
  co_await runCheck();
}

Task<void> CheckCycle::runCheck() {
  const auto session = s_.sessions.current();
  if (!session) co_return;
  const auto loaded = co_await s_.loader.load();
  if (!loaded.configuration) {
    scheduleRetry(s_.sessions.current());
    co_return;
  }
  s_.events.gates.update();
  reportDueBanner();
  if (!loaded.changed && !s_.uploader.isUploadDue(loaded.configuration)) co_return;
  co_await s_.loader.bannerFor(loaded.configuration);
  // Without a banner for the user there is no compliance type to take defaults from.
  const auto inForce = s_.loader.inForce();
  if (inForce && inForce->type) s_.recorder.recordDefaults(loaded.configuration);
  s_.loader.refreshConsentMode();
  co_await s_.uploader.uploadPending(ConsentUploader::Trigger::automatic);
}

void CheckCycle::scheduleRetry(const SessionPointer& session) {
  std::chrono::milliseconds delay = firstRetry;
  {
    const std::scoped_lock lock(mutex_);
    for (int i = 0; i < std::min(retries_, 30) && delay < periodOf(session); ++i) delay *= 2;
    ++retries_;
  }
  delay = std::min(delay, periodOf(session));
  delay -= atRandom(delay / 5);
  auto timer = s_.platform.clock->after(delay, s_.work.whileAlive([this, session] {
    if (s_.sessions.isCurrent(*session)) s_.work.start([this, session]() -> Task<void> { co_await follow(session); });
  }));
  const std::scoped_lock lock(mutex_);
  if (!s_.work.isClosed()) retry_.swap(timer);
}

std::chrono::milliseconds CheckCycle::atRandom(std::chrono::milliseconds limit) {
  const auto choices = static_cast<std::uint64_t>(std::max<std::int64_t>(limit.count(), 0)) + 1;
  return std::chrono::milliseconds(s_.platform.random->next() % choices);
}

void CheckCycle::startNetworkMonitor() {
  std::unique_ptr<NetworkSubscription> earlier;  // destroyed outside the lock: that may wait for its handler
  {
    const std::scoped_lock lock(mutex_);
    earlier = std::move(monitor_);
  }
  earlier.reset();
  auto monitor =
      s_.platform.network->start(s_.platform.executors->serial("NetworkMonitor"),
                                 s_.work.whileAlive([this](NetworkStatus status) { networkChanged(status); }));
  const std::scoped_lock lock(mutex_);
  if (!s_.work.isClosed()) monitor_.swap(monitor);
}

void CheckCycle::networkChanged(NetworkStatus status) {
  {
    const std::scoped_lock lock(mutex_);
    const auto previous = std::exchange(networkStatus_, status);
    if (previous != NetworkStatus::unsatisfied || status != NetworkStatus::satisfied) return;
  }
  const auto delay =
      atRandom(std::min<std::chrono::milliseconds>(longestReconnectionDelay, periodOf(s_.sessions.current()) / 5));
  auto timer = s_.platform.clock->after(delay, s_.work.whileAlive([this] { startCheck(); }));
  const std::scoped_lock lock(mutex_);
  if (!s_.work.isClosed()) reconnected_.swap(timer);
}

void CheckCycle::startPermissionObservation() {
  std::unique_ptr<PermissionSubscription> earlier;
  {
    const std::scoped_lock lock(mutex_);
    earlier = std::move(permissionObservation_);
  }
  earlier.reset();
  auto observation = s_.platform.permissions->observe(s_.work.whileAlive([this] {
    s_.work.run([this] {
      auto permissions = s_.loader.permissions(s_.loader.current());
      if (permissions.checkPermissions(s_.sessions.context(GivenType::noAction))) s_.uploader.schedule();
      s_.events.gates.update();  // tracking is a permission too
    });
  }));
  const std::scoped_lock lock(mutex_);
  if (!s_.work.isClosed()) permissionObservation_.swap(observation);
}

void CheckCycle::honourSignals() {
  std::unique_ptr<PrivacySignalSubscription> observation;  // the earlier one, destroyed outside the lock as above
  const auto session = s_.sessions.current();
  const bool isHonoured = session && session->options.privacySignal;
  if (isHonoured) {
    observation = s_.signal.observe(s_.work.whileAlive([this] {
      s_.events.gates.update();
      s_.work.start([this]() -> Task<void> {
        if (s_.loader.honourSignals()) s_.uploader.schedule();
        s_.loader.refreshConsentMode();
        reportDueBanner();
        co_return;
      });
    }));
  }
  {
    const std::scoped_lock lock(mutex_);
    if (!s_.work.isClosed()) signalObservation_.swap(observation);
  }
  // On this thread, so that later queries see it.
  const bool hasChanged = s_.loader.honourSignals();
  if (hasChanged) s_.uploader.schedule();
  // Without waiting for the load, which may be slow or fail.
  if (hasChanged || isHonoured) s_.work.run([this] { s_.loader.refreshConsentMode(); });
  s_.events.gates.update();
}

void CheckCycle::reportDueBanner() {
  if (s_.events.bannerDue.isEmpty()) return;
  BannerExplanation banner = s_.explainBanner();
  // Without a check in between, an answer and a banner that is due again look like no change.
  const std::int64_t answer = banner.isDue ? newestAnswer() : 0;
  {
    const std::scoped_lock lock(mutex_);
    const bool isAnother = std::exchange(answerBeforeDue_, answer) != answer;
    if (std::exchange(wasBannerDue_, banner.isDue) == banner.isDue && !isAnother) return;
  }
  if (banner.isDue) s_.events.bannerDue.notify(std::move(banner));
}

std::int64_t CheckCycle::newestAnswer() const {
  constexpr std::size_t defaultsAndDevicesAtMost = 1000;
  const auto page = s_.store.history(std::numeric_limits<std::int64_t>::max(), defaultsAndDevicesAtMost);
  const auto isAnswer = [](const HistoryEntry& entry) { return entry.decision.cause == DecisionCause::user; };
  const auto newest = std::ranges::find_if(page.entries, isAnswer);
  return newest == page.entries.end() ? 0 : newest->number;
}

}  // namespace quillon
