// What happens again and again while the application runs: the repeating check, and the checks for which the network,
// the device's permissions or a failed download are the occasion.
#pragma once

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
  // What it calls; all must outlive it.
  struct Services : Foundation {
    ConfigurationLoader& loader;
    ConsentUploader& uploader;
    DecisionRecorder& recorder;
    OtherProcesses& others;
    const HonouredSignal& signal;
    std::function<BannerExplanation()> explainBanner;
  };
  explicit CheckCycle(Services services) : s_(std::move(services)) {}

  // Loads for a session that has just begun, and then watches on its behalf.
  void begin(SessionPointer session);
  // Makes privacy signals count as the session wants it, now and whenever they change.
  void honourSignals();
  // Ends timers and observations. Does not wait for a check.
  void close();

  // Starts the repeating check anew, one period from now.
  void startRecurringCheck();
  // Starts it when the consents were given meanwhile, by another process, and it does not run yet.
  void followOtherProcesses();
  // Runs one check, or joins the one that is in flight.
  Task<void> check();

 private:
  Task<void> follow(SessionPointer session);
  Task<void> runCheck();
  void startCheck();
  void startNetworkMonitor();
  void networkChanged(NetworkStatus status);
  void startPermissionObservation();
  // Tries a first download again that has failed.
  void scheduleRetry(const SessionPointer& session);
  // Tells the application when the banner has become due.
  void judgeBanner();
  // At most the limit, evenly distributed.
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
};

}  // namespace quillon
