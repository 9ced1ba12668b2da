// Taking the application's options.
#pragma once

#include "core/ConsentSDK/CheckCycle.h"

namespace quillon {

class SetUp {
 public:
  // What it calls; all must outlive it.
  struct Services : Foundation {
    ConfigurationLoader& loader;
    CheckCycle& cycle;
  };
  explicit SetUp(Services services) : s_(services) {}

  // Begins a session, applies the cache-reset rules and starts loading. Thread-safe: of two set-ups at once the one
  // that begins its session later holds.
  void run(ConsentSDKOptions given);

 private:
  // Whether the cached document must not serve this session.
  bool mustReset(const Session& session) const;

  const Services s_;
};

}  // namespace quillon
