// The services that every owner uses.
#pragma once

#include "core/ConsentSDK/Events.h"
#include "core/ConsentSDK/Session.h"
#include "core/ConsentSDK/Work.h"
#include "core/Persistance/UserDefaults/UserDefaultManager.h"

namespace quillon {

// All members outlive the owners.
struct Foundation {
  const Platform& platform;
  UserDefaultManager& store;
  SDKLogger& logger;
  Work& work;
  Sessions& sessions;
  Events& events;
};

}  // namespace quillon
