// Stores the user's answers, and the defaults in their absence.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>

#include "core/ConsentSDK/ConsentUploader.h"

namespace quillon {

// Thread-safe. Owns the order of decisions: purposes are stored on the calling thread before the call returns, so calls
// from one thread take effect in order. Permissions, which require querying the device, follow in the background in
// call order.
class DecisionRecorder {
 public:
  // Collaborators; all must outlive it.
  struct Services : Foundation {
    ConfigurationLoader& loader;
    ConsentUploader& uploader;
  };
  explicit DecisionRecorder(Services services) : s_(services) {}

  // Stores the user's choice, uploaded about a second later. False when it could not be stored.
  bool set(const Purpose& purpose, ConsentStatus consent);
  bool set(const AppPermission& permission, ConsentStatus consent);

  // Each operation stores decisions on purposes in one transaction and returns the background work to run next: it
  // stores the current state of every permission and uploads. Empty when the decisions could not be stored.
  using FollowUp = std::move_only_function<Task<void>()>;
  // The answer to the banner. For `notice`, here and below, see DecisionContext.
  [[nodiscard]] FollowUp answer(bool accept, std::string notice);
  // The choices of the preference centre: true for granted.
  [[nodiscard]] FollowUp save(const std::map<std::int64_t, bool>& selectedPurposes, std::string notice);
  // The banner was shown and not answered: stores the default of every undecided purpose.
  [[nodiscard]] FollowUp recordDefaults(std::string notice);

  // Stores the compliance type's default for every undecided purpose; uploads nothing.
  void recordDefaults(const ConfigurationPointer& configuration);

 private:
  // Writes decisions and returns how they were given.
  using Write = std::function<GivenType(const PurposeManager&, StoreTransaction&, const DecisionContext&)>;
  FollowUp store(std::string notice, const Write& write);
  Task<void> storePermissions(ConfigurationPointer configuration, TaskQueue::Place place);
  void warn(const Purpose& purpose, ConsentStatus consent);

  const Services s_;
  TaskQueue permissions_;
};

}  // namespace quillon
