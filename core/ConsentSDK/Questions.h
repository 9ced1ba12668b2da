// Queries that read the configuration, ask the device or wait for the location.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "core/ConsentSDK/ConfigurationLoader.h"
#include "core/ConsentSDK/TradeSignals.h"
#include "quillon/Explanations.h"

namespace quillon {

// Thread-safe and stateless.
class Questions {
 public:
  // Collaborators; all must outlive it.
  struct Services : Foundation {
    LocationLookup& location;
    ConfigurationLoader& loader;
    const TradeSignals& tradeSignals;
  };
  explicit Questions(Services services) : s_(services) {}

  using Signals = std::map<GoogleConsentType, ConsentStatus>;

  // The device's known answer, else the stored value; see ConsentSDK::get().
  ConsentStatus permissionStatus(const VantariKey& permission) const;
  // Whether the device is known to grant the permission.
  bool isPermissionAllowed(const VantariKey& permission) const;

  // Background threads only: asks the device.
  std::vector<Purpose> purposes() const;
  std::vector<AppPermission> permissions() const;
  ConsentStatus livePermission(const VantariKey& permission) const;
  Task<Signals> consentModeSignals();
  Task<std::string> consentScript();
  ConsentExplanation explain(std::int64_t purposeId) const;

  // A member of the available configuration.
  template <class Part>
  std::optional<Part> part(std::optional<Part> MainConfiguration::* member) const {
    const auto configuration = s_.loader.current();
    return configuration ? (*configuration).*member : std::nullopt;
  }

 private:
  std::string withTradeSignals(std::string script) const;
  // The mapping that applies to the user; null unless the configuration drives consent mode. Owned by the
  // configuration.
  Task<const DefaultMapping*> mappingFor(ConfigurationPointer configuration);
  std::optional<Decision> newestDecision(std::int64_t purposeId) const;

  const Services s_;
};

}  // namespace quillon
