// The environment that all processes of a world share.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/memory/MemoryFileSystem.h"
#include "platform/memory/MemoryStore.h"
#include "platform/memory/SettablePermissionSources.h"
#include "platform/memory/SettablePrivacySignals.h"
#include "platform/memory/StaticNetworkPath.h"
#include "platform/memory/VirtualClock.h"
#include "tests/sim/Documents.h"
#include "tests/sim/Model.h"
#include "tests/sim/Plan.h"
#include "tests/sim/Scheduler.h"
#include "tests/sim/Servers.h"
#include "tests/sim/StoreView.h"
#include "tests/sim/Traffic.h"
#include "tests/sim/Trail.h"

namespace quillon::sim {

class Surroundings {
 public:
  Surroundings(const Plan& of, Trail& to);

  const Plan& plan;
  Trail& trail;
  const std::vector<Document> documents;
  Model model;
  const std::shared_ptr<Scheduler> scheduler = std::make_shared<Scheduler>();
  const std::shared_ptr<VirtualClock> clock;
  const std::shared_ptr<MemoryStore> store = std::make_shared<MemoryStore>();
  const std::shared_ptr<MemoryFileSystem> files = std::make_shared<MemoryFileSystem>("/data");
  const std::shared_ptr<StaticNetworkPath> network = std::make_shared<StaticNetworkPath>();
  const std::shared_ptr<SettablePermissionSources> permissions = std::make_shared<SettablePermissionSources>();
  const std::shared_ptr<SettablePrivacySignals> signals = std::make_shared<SettablePrivacySignals>();
  Servers servers;
  Traffic traffic;
  std::shared_ptr<bool> isTrackingAuthorized = std::make_shared<bool>(false);
  std::string language = "en";
  // Called for every error that the SDK logs; fails unless it is expected.
  void errorLogged(const std::string& block);
  // Whether a fault was injected since the start, or since all faults were removed.
  bool isDisturbed = false;

  // Moves the wall clock by `delta`.
  void jump(std::chrono::milliseconds delta);
  // Monotonic time in seconds.
  [[nodiscard]] std::int64_t elapsed() const;
  [[nodiscard]] StoreView view() const;
  // Writes a consent that the user did not give.
  void tamper();
  // The store after an act or its subsequent jobs, and the purposes that a signal may have refused then.
  struct Moment {
    StoreView store;
    std::set<int> refused;
  };
  std::vector<Moment> moments;
  void remember(const StoreView& store) { moments.push_back({store, model.mayBeRefused()}); }
  // Whether the purpose had that status at some moment from index `since` on.
  [[nodiscard]] bool wasStored(std::size_t since, int purpose, const std::string& status) const;
  // Whether the purpose was undecided at some moment from index `since` on, after its signal had ended.
  [[nodiscard]] bool wasUndecided(std::size_t since, int purpose) const;
  [[nodiscard]] std::optional<int> versionOnDisk() const;
  // Publishes the document under every name that may be requested.
  void publishEverywhere(const Document& document);

 private:
  const std::shared_ptr<KeyValueSuite> suite_;
  std::chrono::milliseconds jumped_{0};
};

}  // namespace quillon::sim
