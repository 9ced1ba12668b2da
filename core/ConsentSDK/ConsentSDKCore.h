// What stands behind the facade: the services of one instance and the operations that the facade's units share.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <stop_token>
#include <string>

#include "core/Configuration/ConfigurationCache.h"
#include "core/ConsentSDK/HostCalls.h"
#include "core/ConsentSDK/Listeners.h"
#include "core/ConsentSDK/SDKListener.h"
#include "core/ConsentSDK/Theme.h"
#include "core/Integrations/GoogleConsentModeHelper.h"
#include "core/Network/ConsentNetworkManager.h"
#include "core/Network/EndPoints.h"
#include "core/Permissions/PermissionManager.h"
#include "core/Persistance/UserDefaults/UserDefaultManager.h"
#include "core/Purposes/PurposeManager.h"
#include "core/Tasks/TaskEvent.h"
#include "core/Tasks/TaskGroup.h"
#include "core/Tasks/TaskQueue.h"
#include "core/Text/LocaleUtils.h"
#include "platform/Platform.h"
#include "quillon/ConsentSDK.h"
#include "quillon/SDKLogger.h"

namespace quillon {

// Every task holds the core, so it lives until the last one is over; after close() none begins and nothing of the
// host's is called any more. Thread-safe. Operations that return a Task run in the background.
class ConsentSDK::Core : public std::enable_shared_from_this<Core> {
 public:
  static std::shared_ptr<Core> make(Platform platform);
  explicit Core(Platform services);  // use make()

  // Ends timers, network reports and exchanges. Does not wait.
  void close();
  // Waits until no task is under way and none of the host's callbacks runs, but for the one that this is called in.
  void waitUntilQuiet(std::chrono::milliseconds limit);

  // ConsentSDK
  void setup(ConsentSDKOptions newOptions);
  std::optional<ConsentSDKOptions> currentOptions() const;

  // ConsentSDK+NetworkAPIs
  Task<std::expected<MainConfiguration, RequestFailure>> getCDN(const ConsentSDKOptions& options);
  Task<std::optional<CurrentLocationResponse>> getCurrentLocation();
  // Sends the request and keeps the outcome: the pending flag, the pending lists, the recurring check. What `sent`
  // holds pending is settled on success, but for what the user changed meanwhile. True when the server took it. Within
  // a turn of `uploads`.
  Task<bool> uploadConsents(std::string url, PostConsentsRequest request, std::shared_ptr<const SuiteEntries> sent);

  // ConsentSDK+CDNUtils
  struct Loaded {
    ConfigurationPointer configuration;  // null when none could be had
    bool changed = false;                // reconciling it with the stored consents changed something
  };
  // Brings the configuration: cached, downloaded or cached after all; applies it and sets the status.
  Task<Loaded> getCDNFile();

  // ConsentSDK+InternalMethods
  // The location that decides which banner and which consent-mode mapping apply: the options', the remembered one of
  // the last hour, else the server's answer. Nothing when it is unknown or when the configuration makes no difference
  // by it. An answer that is long in coming is not waited for; once it is there, the configuration is applied anew.
  Task<std::optional<std::string>> locationFor(const MainConfiguration& configuration);
  // The location as far as it is known without asking anybody.
  std::optional<std::string> knownLocation() const;
  // The banner for the user's location, complete with the interface's texts; remembers its interval.
  Task<std::optional<BannerConfig>> bannerFor(ConfigurationPointer configuration);
  void startRecurringCheck();
  void startNetworkMonitor();
  void startPermissionObservation();
  Task<void> consentCheck();
  bool isBannerDue();
  // Why it is, or is not; changes nothing.
  BannerExplanation explainBanner();
  // Uploads what is pending. True when nothing is pending afterwards.
  Task<bool> uploadPendingConsents();
  // Hands the signals that follow from the present consents to the host's analytics library.
  void refreshConsentMode();
  // Uploads what is pending about a second from now, together with what else is decided until then.
  void scheduleUpload();

  PurposeManager purposes(ConfigurationPointer configuration) {
    return PurposeManager(platform, store, logger, std::move(configuration));
  }
  PermissionManager permissions(ConfigurationPointer configuration) {
    return PermissionManager(platform, store, logger, std::move(configuration));
  }
  std::int64_t now() const { return wholeSeconds(platform.clock->now()); }
  Occasion occasion(GivenType given) const { return {given, now(), locale.currentLanguageCode()}; }

  // Runs a job of the host's on the main queue, contained, unless the SDK is gone by then.
  void onMain(Job job);
  // Calls the host; what it throws ends in the log.
  void callHost(Job& job);

  // ConsentSDK+Listeners
  // Takes the changes among the decisions up for the host's listeners; the job delivers them.
  Job announce(std::vector<Decision> decisions);
  // For whoever shows a screen of this instance: tells the host's listeners now that it is shown, and that it is gone
  // when what is returned goes.
  [[nodiscard]] std::shared_ptr<void> shown(ScreenKind screen);

  // ConsentSDK+Screens
  // Each shows a screen, on the main queue; without a user interface only a warning is logged.
  void presentBanner();
  void presentPreferenceCenter();
  // When the configuration offers it for the permission, and the user has not closed it before or that does not matter.
  enum class Offer { unlessClosedBefore, always };
  void presentSettingPrompt(VantariKey permission, Offer offer);
  void openLink(std::string link);
  // Lets the user interface do something, later on the main queue; nothing when there is none.
  void withScreens(std::function<void(ScreenPresenter&)> act);

  // ConsentSDK+Decisions
  // Gives every purpose without a decision the default of the compliance type.
  void recordDefaults(ConfigurationPointer configuration);
  // Each stores decisions in one transaction, together with the present state of every permission, and then uploads
  // what changed. False when it could not be stored; whether the upload succeeded shows as the pending state.
  // The answer to the banner.
  Task<bool> acceptOrReject(bool accept);
  // The choices made in the preference centre: true for granted.
  Task<bool> savePreferences(std::map<std::int64_t, bool> selectedPurposes);
  // A banner that was seen and not answered: the default of every purpose without a decision.
  Task<bool> recordDefaultExplicitConsents();

  Platform platform;
  UserDefaultManager store;
  SDKLogger logger;
  LocaleUtils locale;
  SDKListener sdkListener;
  Listeners<Decision> consentListeners;
  Listeners<ScreenEvent> screenListeners;
  Listeners<UploadEvent> uploadListeners;
  ConfigurationCache cache;
  std::stop_source stop;
  ConsentNetworkManager networkManager;
  GoogleConsentModeHelper consentMode;
  Theme theme;
  std::optional<TaskGroup> tasks;  // set by make()
  TaskQueue uploads;               // Overtaking one another they would leave an earlier decision on the server.

 private:
  // Whether the time under that key lies no longer back than that.
  bool isWithin(std::string_view timestamp, std::chrono::seconds lifetime) const;
  // Asks the server for the location, unless it is being asked, and tells when that is over.
  std::shared_ptr<TaskEvent> locationLookup();
  Task<std::expected<MainConfiguration, RequestFailure>> requestConfiguration(const ConsentSDKOptions& options,
                                                                              EndPoint endPoint);
  Task<bool> apply(ConfigurationPointer configuration);
  Task<ConfigurationPointer> download(ConfigurationPointer probe);
  // Writes the decisions on purposes and answers how they were given.
  using Record = std::function<GivenType(const PurposeManager&, StoreTransaction&, const Occasion&)>;
  Task<bool> record(Record write);
  void present(std::string_view operation, std::function<void(ScreenPresenter&)> show);
  Task<bool> offersSettingsPrompt(VantariKey permission, Offer offer);
  PostConsentsRequest uploadRequest(const ConsentSDKOptions& options, const StoredValues& stored,
                                    const ConfigurationPointer& configuration);

  HostCalls hostCalls_;

  mutable std::mutex mutex_;  // guards the members below; never held while anything else is called
  std::optional<ConsentSDKOptions> options_;
  std::unique_ptr<Timer> recurringCheckTask_;
  std::unique_ptr<NetworkSubscription> monitor_;
  std::optional<NetworkStatus> networkStatus_;
  std::unique_ptr<PermissionSubscription> permissionObservation_;
  std::shared_ptr<TaskEvent> locationLookup_;  // under way
  std::unique_ptr<Timer> followUp_;
  bool followUpScheduled_ = false;
  std::uint64_t followUpNumber_ = 0;  // of the upload scheduled last
};

}  // namespace quillon
