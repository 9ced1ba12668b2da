// Recurring consent checks, triggered by the timer, the network, the device's permissions or a failed download.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>

#include "core/ConsentSDK/DecisionRecorder.h"
#include "core/ConsentSDK/OtherProcesses.h"

namespace quillon {

// Thread-safe. At most one check is in flight.
class CheckCycle {
 public:
  // Collaborators; all must outlive it.
  struct Services : Foundation {
    ConfigurationLoader& loader;
    ConsentUploader& uploader;
    DecisionRecorder& recorder;
    OtherProcesses& others;
    const HonouredSignal& signal;
    std::function<BannerExplanation()> explainBanner;
  };
  explicit CheckCycle(Services services) : s_(std::move(services)) {}

  // Loads the configuration of a new session and starts watching network, permissions and the store.
  void begin(SessionPointer session);
  // Applies the session's privacy-signal options, now and whenever a signal changes.
  void honourSignals();
  // Stops timers and observations. Does not wait for a running check.
  void close();

  // Restarts the recurring check, one period from now.
  void startRecurringCheck();
  // Starts the recurring check if it is not running and consents were given meanwhile: in another process, or in this
  // one by a decision whose upload failed.
  void watchAnswered();
  // Runs a check, or joins the one in flight.
  Task<void> check();

 private:
  Task<void> follow(SessionPointer session);
  Task<void> runCheck();
  void startCheck();
  void startNetworkMonitor();
  void networkChanged(NetworkStatus status);
  void startPermissionObservation();
  // Schedules another attempt at a failed first download.
  void scheduleRetry(const SessionPointer& session);
  // Notifies listeners once each time the banner becomes due.
  void reportDueBanner();
  // The history's number of the user's newest answer; 0 when there is none.
  std::int64_t newestAnswer() const;
  // Uniformly distributed from zero to the limit.
  std::chrono::milliseconds atRandom(std::chrono::milliseconds limit);

  const Services s_;
  std::mutex mutex_;  // guards the members below; never held while anything else is called
  std::shared_ptr<TaskEvent> inFlight_;
  std::unique_ptr<Timer> recurring_;
  std::unique_ptr<Timer> reconnected_;
  std::unique_ptr<Timer> retry_;
  int retries_ = 0;
  std::unique_ptr<NetworkSubscription> monitor_;
  std::optional<NetworkStatus> networkStatus_;
  std::unique_ptr<PermissionSubscription> permissionObservation_;
  std::unique_ptr<PrivacySignalSubscription> signalObservation_;
  bool wasBannerDue_ = false;
  std::int64_t answerBeforeDue_ = 0;
};

}  // namespace quillon
