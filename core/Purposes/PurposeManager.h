// The consents of a configuration's purposes.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

#include "core/Persistance/UserDefaults/UserDefaultManager.h"
#include "core/Purposes/OptOuts.h"
#include "quillon/MainConfiguration.h"
#include "quillon/PostConsentsRequest.h"

namespace quillon {

// Thread-safe; all durable state is in the store.
class PurposeManager {
 public:
  // Queries the tracking status here, so that no transaction has to. Platform, store and logger must outlive it; a null
  // configuration lists no purposes.
  PurposeManager(const Platform& platform, UserDefaultManager& store, SDKLogger& logger,
                 std::shared_ptr<const MainConfiguration> configuration, OptOuts optOuts = {});

  // Updates the purposes bound to app tracking to its status, and others to privacy signals. True when a purpose has no
  // consent yet, a consent changed with either, or the process's change flag is set.
  bool checkPurposes(const DecisionContext& context);

  // Updates the purposes to privacy signals only. True when a consent changed.
  bool honourSignals(const DecisionContext& context);

  // Whether a privacy signal decides about the purpose.
  bool isOptedOutBySignal(std::int64_t purposeId, const StoredValues& stored) const {
    return optOuts_.include(purposeId, stored);
  }
  // Whether a banner would ask something, and privacy signals answer all of it.
  bool areSettledBySignal(const StoredValues& stored) const;

  // The purposes in display order with their current consents, marked when governed by app tracking.
  std::vector<Purpose> purposesWithConsents() const;

  struct Resolution {
    std::int64_t purposeId;
    ConsentStatus status;
    DecisionCause cause;
  };
  using Resolutions = std::vector<Resolution>;

  // The status of each purpose after an answer to the banner: all granted or all declined, except that essential
  // purposes are granted and those bound to app tracking follow its status.
  Resolutions answer(bool accept, const StoredValues& stored) const;

  // The status of each purpose after choices in the preference centre: granted where true, else declined; essential
  // purposes are granted, and those bound to app tracking follow its status, which may have changed since they were
  // shown. Other purposes without a choice are omitted.
  Resolutions choices(const std::map<std::int64_t, bool>& selected, const StoredValues& stored) const;

  // Whether a purpose decided neither by app tracking nor by a privacy signal has a stored decision.
  bool hasDecisions(const StoredValues& stored) const;

  // Stores the default of every undecided purpose: the tracking status, granted when essential, else the compliance
  // type's default. Returns how they were given: implicitly, or noAction while a re-consent is requested, which
  // defaults must not answer.
  GivenType recordDefaults(StoreTransaction& transaction, DecisionContext context) const;

  // The pending consents as uploaded, from one snapshot of the store.
  std::vector<PurposeConsent> pendingConsents(const StoredValues& stored) const;

  // Writes one decision and all values that depend on it.
  static void setConsent(StoreTransaction& transaction, const Resolution& resolution, const DecisionContext& context);

  const std::vector<Purpose>& purposes() const;

 private:
  bool honourSignals(StoreTransaction& transaction, const DecisionContext& context) const;
  bool isATTMapped(std::int64_t purposeId) const { return attMapped_.contains(purposeId); }
  // The current status: the decision or default, adjusted to app tracking.
  ConsentStatus currentStatus(std::int64_t purposeId, const StoredValues& stored) const;
  // The status from a decision of this cause, which tracking may override.
  Resolution decided(std::int64_t purposeId, bool granted, DecisionCause cause, const StoredValues& stored) const;

  const Platform& platform_;
  UserDefaultManager& store_;
  SDKLogger& logger_;
  const std::shared_ptr<const MainConfiguration> configuration_;
  const OptOuts optOuts_;
  const bool tracking_;                         // authorized
  std::unordered_set<std::int64_t> attMapped_;  // the purposes that app tracking governs
};

}  // namespace quillon
