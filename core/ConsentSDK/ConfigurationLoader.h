// Brings the configuration of a session, and puts it in force.
#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <optional>

#include "core/Configuration/BundledConfiguration.h"
#include "core/Configuration/ConfigurationCache.h"
#include "core/ConsentSDK/Foundation.h"
#include "core/ConsentSDK/HonouredSignal.h"
#include "core/ConsentSDK/LocationLookup.h"
#include "core/Integrations/GoogleConsentModeHelper.h"
#include "core/Permissions/PermissionManager.h"
#include "core/Purposes/PurposeManager.h"
#include "core/Purposes/PurposeTerms.h"
#include "core/Tasks/TaskQueue.h"

namespace quillon {

// A configuration that was applied in this process. Immutable.
struct ConfigurationInForce {
  ConfigurationPointer configuration;
  SessionPointer session;              // that it was applied for
  std::optional<ComplianceType> type;  // of the banner for the user's location; nothing when there is no banner
  std::string bannerInterval;
  PurposeTerms terms;
};

// Thread-safe. One load at a time for a session; what was loaded for a session that is no longer the current one is
// dropped.
class ConfigurationLoader {
 public:
  // What it calls; all must outlive it.
  struct Services : Foundation {
    ServerApi& server;
    LocationLookup& location;
    GoogleConsentModeHelper& consentMode;
    HonouredSignal& signal;
  };
  explicit ConfigurationLoader(Services services);

  // Prepares the loads of a session that has just begun. With `reset` the cached document goes, too.
  void begin(const SessionPointer& session, bool reset);

  struct Loaded {
    ConfigurationPointer configuration;  // null when none could be had
    bool changed = false;                // reconciling it with the stored consents changed something
  };
  // Loads for the current session, or joins the load that is in flight for it: takes the cached document, downloads, or
  // falls back to what there is; applies it and sets the status.
  Task<Loaded> load();

  // The configuration at hand for the current session: cached, else bundled. Reads a file when that has changed.
  ConfigurationPointer current();
  // What was applied last; null before that and after close().
  std::shared_ptr<const ConfigurationInForce> inForce() const;

  // Brings what is stored in line with privacy signals, and with what the session has them stand for. True when that
  // changed something.
  bool honourSignals();

  // Applies what is in force anew, in the background: more is known of the user's location.
  void reapply();
  // Empties the store and writes what is in force again, in one transaction.
  bool removeConsents();

  // The banner of a configuration for the user's location, with the interface's texts; remembers its interval.
  Task<std::optional<BannerConfig>> bannerFor(ConfigurationPointer configuration);
  // Hands the signals that follow from the present consents to the application's analytics library.
  void refreshConsentMode();

  PurposeManager purposes(ConfigurationPointer configuration) const {
    return PurposeManager(s_.platform, s_.store, s_.logger, std::move(configuration), s_.signal.optOuts());
  }
  PermissionManager permissions(ConfigurationPointer configuration) const {
    return PermissionManager(s_.platform, s_.store, s_.logger, std::move(configuration));
  }

 private:
  struct Flight;
  struct Served;

  std::shared_ptr<Flight> joinFlight(const SessionPointer& session, bool& isOwn);
  Task<Loaded> run(SessionPointer session, std::shared_ptr<Flight> flight);
  Task<ConfigurationPointer> download(SessionPointer session, ConfigurationPointer cached);
  // Goes on with what there is while the download takes longer than the application wants to wait.
  std::unique_ptr<Timer> serveAfter(const SessionPointer& session, const std::shared_ptr<Flight>& flight,
                                    const ConfigurationPointer& cached);
  // True when applying changed a consent. Nothing when the session is over, or the configuration is not wanted any more
  // once its turn has come.
  Task<std::optional<bool>> apply(SessionPointer session, ConfigurationPointer configuration,
                                  std::function<bool()> isWanted);
  bool reconcile(const ConfigurationPointer& configuration);
  void warnOfUnknownRegion(const Session& session, const MainConfiguration& configuration);
  Served served(const SessionPointer& session, ConfigurationPointer cached) const;
  bool isFresh(const Served& cached);
  void setReady(const SessionPointer& session, SDKStatus status);

  const Services s_;
  ConfigurationCache cache_;
  BundledConfiguration bundled_;
  TaskQueue applying_;
  mutable std::mutex mutex_;  // guards the members below; never held while anything else is called
  std::shared_ptr<Flight> flight_;
  std::shared_ptr<const ConfigurationInForce> inForce_;
};

}  // namespace quillon
