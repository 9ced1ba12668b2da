// What the processes of one world share.
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
  // An error of the SDK's; explained, or not.
  void errorLogged(const std::string& block);
  // Whether anything was put out of order since the beginning, or since everything healed.
  bool isDisturbed = false;

  // Puts the clock on the wall forward or back.
  void jump(std::chrono::milliseconds delta);
  // Seconds that have passed, whatever the clock on the wall shows.
  [[nodiscard]] std::int64_t elapsed() const;
  [[nodiscard]] StoreView view() const;
  // Writes a consent that nobody gave.
  void tamper();
  // What the store held after an act or the jobs behind it, and which purposes a signal may have refused then.
  struct Moment {
    StoreView store;
    std::set<int> refused;
  };
  std::vector<Moment> moments;
  void remember(const StoreView& store) { moments.push_back({store, model.mayBeRefused()}); }
  // Whether that was the status of the purpose at some moment since there were that many.
  [[nodiscard]] bool wasStored(std::size_t since, int purpose, const std::string& status) const;
  // Whether nothing was decided about it then, as its signal had ended.
  [[nodiscard]] bool wasUndecided(std::size_t since, int purpose) const;
  [[nodiscard]] std::optional<int> versionOnDisk() const;
  // The document under every name that it may be asked for by.
  void publishEverywhere(const Document& document);

 private:
  const std::shared_ptr<KeyValueSuite> suite_;
  std::chrono::milliseconds jumped_{0};
};

}  // namespace quillon::sim
