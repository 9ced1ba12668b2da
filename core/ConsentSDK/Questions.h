// What applications ask that takes reading the configuration, asking the device or waiting for the location.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "core/ConsentSDK/ConfigurationLoader.h"
#include "quillon/Explanations.h"

namespace quillon {

// Thread-safe; without state. Every answer is computed anew.
class Questions {
 public:
  // What it calls; all must outlive it.
  struct Services : Foundation {
    LocationLookup& location;
    ConfigurationLoader& loader;
  };
  explicit Questions(Services services) : s_(services) {}

  using Signals = std::map<GoogleConsentType, ConsentStatus>;

  // What the device is known to say, else what is stored; see ConsentSDK::get().
  ConsentStatus permissionStatus(const VantariKey& permission) const;
  // Whether the device is known to have granted it.
  bool isPermissionAllowed(const VantariKey& permission) const;

  Task<std::vector<Purpose>> purposes();
  Task<std::vector<AppPermission>> permissions();
  Task<ConsentStatus> livePermission(VantariKey permission);
  Task<Signals> consentModeSignals();
  Task<std::string> consentScript();
  Task<ConsentExplanation> explain(std::int64_t purposeId);

  // A part of the configuration at hand.
  template <class Part>
  Task<std::optional<Part>> part(std::optional<Part> MainConfiguration::* member) {
    const auto configuration = s_.loader.current();
    co_return configuration ? (*configuration).*member : std::nullopt;
  }

 private:
  // The mapping that applies to the user; null unless the configuration drives consent mode. Owned by it.
  Task<const DefaultMapping*> mappingFor(ConfigurationPointer configuration);
  std::optional<Decision> newestDecision(std::int64_t purposeId) const;

  const Services s_;
};

}  // namespace quillon
