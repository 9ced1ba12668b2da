// A configuration's purposes, prepared for fast queries.
#pragma once

#include <cstdint>
#include <vector>

#include "core/Persistance/UserDefaults/ConsentTable.h"
#include "platform/AppTracking.h"
#include "platform/PrivacySignals.h"
#include "quillon/MainConfiguration.h"

namespace quillon {

// The purposes governed by app tracking; none unless the configuration enables it.
[[nodiscard]] std::vector<std::int64_t> purposesBoundToTracking(const MainConfiguration& configuration);

// Immutable.
class PurposeTerms {
 public:
  // `type` is that of the user's banner; without one nothing is granted by default.
  PurposeTerms(const MainConfiguration& configuration, std::optional<ComplianceType> type);

  // The purposes allowed while undecided: all under a type that needs no question, else the essential ones.
  [[nodiscard]] const std::vector<std::int64_t>& allowedUndecided() const {
    return isGrantedByDefault_ ? listed_ : essential_;
  }
  [[nodiscard]] const std::vector<std::int64_t>& boundToTracking() const { return bound_; }
  [[nodiscard]] bool lists(std::int64_t purposeId) const;
  [[nodiscard]] bool isEssential(std::int64_t purposeId) const;
  // Whether app tracking governs the purpose.
  [[nodiscard]] bool isBoundToTracking(std::int64_t purposeId) const;

 private:
  std::vector<std::int64_t> listed_;     // sorted
  std::vector<std::int64_t> essential_;  // sorted; listed, too
  std::vector<std::int64_t> bound_;      // sorted
  bool isGrantedByDefault_;
};

// Whether an application may act on a purpose. Fails closed: an undecided purpose needs terms in force that allow it,
// and no lost entries; a purpose bound to tracking also needs the device's authorization; an honoured privacy signal
// that is on opts out of what it covers, unless the user has answered. `signals` is null on a device without any.
// Allocates nothing.
[[nodiscard]] bool isPurposeAllowed(const PurposeState& purpose, const AppTracking& tracking,
                                    const PrivacySignals* signals);

}  // namespace quillon
