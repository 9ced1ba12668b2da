// What is recorded of the user's answers, and in their absence.
#pragma once

#include <cstdint>
#include <functional>
#include <map>

#include "core/ConsentSDK/ConsentUploader.h"

namespace quillon {

// Thread-safe. Owns the order of decisions: what concerns purposes is stored on the calling thread before the call
// returns, so that the calls of one thread take effect in their order. The permissions, about which the device must be
// asked, follow in the background in the order of the calls.
class DecisionRecorder {
 public:
  // What it calls; all must outlive it.
  struct Services : Foundation {
    ConfigurationLoader& loader;
    ConsentUploader& uploader;
  };
  explicit DecisionRecorder(Services services) : s_(services) {}

  // The user's choice; uploaded about a second later. False when it could not be stored.
  bool set(const Purpose& purpose, ConsentStatus consent);
  bool set(const AppPermission& permission, ConsentStatus consent);

  // Each stores decisions on purposes now, in one transaction, and returns what is to be run in the background then: it
  // stores the present state of every permission and uploads. Empty when the decisions could not be stored.
  using FollowUp = std::move_only_function<Task<void>()>;
  // The answer to the banner.
  [[nodiscard]] FollowUp answer(bool accept);
  // The choices made in the preference centre: true for granted.
  [[nodiscard]] FollowUp save(const std::map<std::int64_t, bool>& selectedPurposes);
  // A banner that was seen and not answered: the default of every purpose without a decision.
  [[nodiscard]] FollowUp recordDefaults();

  // Gives every purpose without a decision the default of the compliance type; nothing is uploaded.
  void recordDefaults(const ConfigurationPointer& configuration);

 private:
  // Writes decisions and answers how they were given.
  using Write = std::function<GivenType(const PurposeManager&, StoreTransaction&, const DecisionContext&)>;
  FollowUp record(const Write& write);
  Task<void> recordPermissions(ConfigurationPointer configuration, TaskQueue::Place place);
  void warn(const Purpose& purpose, ConsentStatus consent);

  const Services s_;
  TaskQueue permissions_;
};

}  // namespace quillon
