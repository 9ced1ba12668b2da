// Applies the application's options.
#pragma once

#include "core/ConsentSDK/CheckCycle.h"

namespace quillon {

class SetUp {
 public:
  // Collaborators; all must outlive it.
  struct Services : Foundation {
    ConfigurationLoader& loader;
    CheckCycle& cycle;
  };
  explicit SetUp(Services services) : s_(services) {}

  // Begins a session, applies the cache-reset rules and starts loading. Thread-safe: of two concurrent calls, the one
  // whose session begins later wins.
  void run(ConsentSDKOptions given);

 private:
  // Whether the cached document must not be used for this session.
  bool mustReset(const Session& session) const;

  const Services s_;
};

}  // namespace quillon
