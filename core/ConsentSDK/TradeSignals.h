// The input of the advertising signals.
#pragma once

#include "core/ConsentSDK/ConfigurationLoader.h"
#include "core/ConsentSDK/Followers.h"
#include "platform/SignalSource.h"

namespace quillon {

// Thread-safe; stateless except for its followers.
class TradeSignals : public SignalSource {
 public:
  // Collaborators; all must outlive it.
  struct Services : Foundation {
    LocationLookup& location;
    ConfigurationLoader& loader;
    const HonouredSignal& signal;
  };
  explicit TradeSignals(Services services) : s_(services) {}

  SignalState state() override;
  std::shared_ptr<void> followChanges(std::function<void()> changed) override;
  std::shared_ptr<void> followPageScripts(std::function<void(std::string&)> append) override {
    return pageScripts_.add(std::move(append));
  }
  SDKLogger& logger() override { return s_.logger; }

  // Lets the followers append to a script for the application's own pages.
  void complete(std::string& script) const { pageScripts_.notify(script); }

 private:
  const Services s_;
  Followers<std::string&> pageScripts_;
};

}  // namespace quillon
