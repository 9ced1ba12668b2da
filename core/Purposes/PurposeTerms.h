// A configuration's purposes, prepared for fast queries.
#pragma once

#include <cstdint>
#include <vector>

#include "core/Persistance/UserDefaults/StoredValues.h"
#include "core/Purposes/OptOuts.h"
#include "platform/AppTracking.h"
#include "quillon/MainConfiguration.h"

namespace quillon {

// The purposes governed by app tracking; none unless the configuration enables it.
[[nodiscard]] std::vector<std::int64_t> purposesBoundToTracking(const MainConfiguration& configuration);

// Immutable.
class PurposeTerms {
 public:
  // `type` is that of the user's banner; without one nothing is granted by default.
  PurposeTerms(const MainConfiguration& configuration, std::optional<ComplianceType> type);

  // Whether an undecided purpose may be acted on: it is listed, and essential or of a type that needs no question.
  // Allocates nothing.
  [[nodiscard]] bool allowsUndecided(std::int64_t purposeId) const;
  [[nodiscard]] bool lists(std::int64_t purposeId) const;
  [[nodiscard]] bool isEssential(std::int64_t purposeId) const;
  // Whether app tracking governs it.
  [[nodiscard]] bool isBoundToTracking(std::int64_t purposeId) const;

 private:
  std::vector<std::int64_t> listed_;     // sorted
  std::vector<std::int64_t> essential_;  // sorted
  std::vector<std::int64_t> bound_;      // sorted
  bool isGrantedByDefault_;
};

// Whether an application may act on a purpose. Fails closed: an undecided purpose needs terms (null while none are in
// force) that allow it, and no lost entries; a purpose bound to tracking also needs the device's authorization; a
// privacy signal's opt-out denies. Allocates nothing.
[[nodiscard]] bool isPurposeAllowed(std::int64_t purposeId, const StoredValues& stored, const PurposeTerms* terms,
                                    const AppTracking& tracking, const OptOuts& optOuts);

}  // namespace quillon
