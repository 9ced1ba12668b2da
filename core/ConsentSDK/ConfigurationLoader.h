// Loads and applies the configuration of a session.
#pragma once

#include <atomic>
#include <cstdint>
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
  SessionPointer session;              // the one it was applied for
  std::optional<ComplianceType> type;  // of the banner for the user's location; nullopt without a banner
  std::string bannerInterval;
  PurposeTerms terms;
  std::shared_ptr<std::atomic<bool>> isStored = std::make_shared<std::atomic<bool>>(false);

  // Stores its values if they could not be stored before, or if another process has removed them. Otherwise a default
  // could be granted, under an earlier compliance type or none, although this configuration asks.
  void restore(StoreTransaction& transaction) const;
};

// Thread-safe. One load at a time per session; results for a session that is no longer current are dropped.
class ConfigurationLoader {
 public:
  // Collaborators; all must outlive it.
  struct Services : Foundation {
    ServerApi& server;
    LocationLookup& location;
    GoogleConsentModeHelper& consentMode;
    HonouredSignal& signal;
  };
  explicit ConfigurationLoader(Services services);

  // Prepares loading for a new session; nothing is loaded for it before. `reset` removes the cached document.
  void begin(const SessionPointer& session, bool reset);

  struct Loaded {
    ConfigurationPointer configuration;  // null when there is none
    bool changed = false;                // applying it changed a stored consent
  };
  // Loads for the current session, or joins the load in flight: takes the cached document, a download, or the bundled
  // document; applies it and sets the status. Loads nothing if the session was not yet prepared: its set-up will load.
  Task<Loaded> load();

  // The configuration available for the current session: cached, else bundled. Reads the file if it has changed.
  ConfigurationPointer current();
  // The configuration applied last; null before the first and after close().
  std::shared_ptr<const ConfigurationInForce> inForce() const;
  // UserDefaultManager::transact() for decisions that depend on the configuration in force; first stores its values if
  // they are missing.
  bool transact(const UserDefaultManager::Edit& edit);

  // The current opt-outs by privacy signals.
  [[nodiscard]] OptOuts optOuts() const { return s_.signal.optOuts(); }
  // Updates stored consents to privacy signals and the session's mapping of them. True when a consent changed.
  bool honourSignals();

  // Re-applies the configuration in force, in the background, after the user's location became known.
  void reapply();
  // Empties the store and re-applies the configuration in force, in one transaction.
  bool removeConsents();

  // The banner for the user's location, with interface texts; stores its interval.
  Task<std::optional<BannerConfig>> bannerFor(ConfigurationPointer configuration);
  // Passes the current consent-mode signals to the application's analytics library.
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

  // Null if the session was not yet prepared.
  std::shared_ptr<Flight> joinFlight(const SessionPointer& session, bool& isOwn);
  Task<Loaded> run(SessionPointer session, std::shared_ptr<Flight> flight);
  Task<ConfigurationPointer> download(SessionPointer session, ConfigurationPointer cached);
  // After `readyWithin`, applies the cached or bundled document while the download continues.
  std::unique_ptr<Timer> serveAfter(const SessionPointer& session, const std::shared_ptr<Flight>& flight,
                                    const ConfigurationPointer& cached);
  // True when applying changed a consent. nullopt when the session has ended, or `isWanted` is false once it is this
  // call's turn.
  Task<std::optional<bool>> apply(SessionPointer session, ConfigurationPointer configuration,
                                  std::function<bool()> isWanted);
  // Passes the terms in force to the ConsentTable. Requires the lock.
  void updateTerms();
  bool reconcile(const ConfigurationPointer& configuration);
  void warnOfUnknownRegion(const Session& session, const MainConfiguration& configuration);
  Served served(const SessionPointer& session, ConfigurationPointer cached) const;
  // The cached document usable for the session now; another process may have saved a newer one than `earlier`.
  ConfigurationPointer newest(const SessionPointer& session, ConfigurationPointer earlier);
  bool isFresh(const Served& cached);
  void setReady(const SessionPointer& session, SDKStatus status);

  const Services s_;
  ConfigurationCache cache_;
  BundledConfiguration bundled_;
  TaskQueue applying_;
  mutable std::mutex mutex_;  // guards the members below; held while updating the ConsentTable, never for other calls
  std::shared_ptr<Flight> flight_;
  std::uint64_t prepared_ = 0;  // the generation of the newest session passed to begin()
  std::shared_ptr<const ConfigurationInForce> inForce_;
};

}  // namespace quillon
