// The services of one instance, constructed in the order of this list.
#pragma once

#include <memory>

#include "core/ConsentSDK/CheckCycle.h"
#include "core/ConsentSDK/Questions.h"
#include "core/ConsentSDK/Receipts.h"
#include "core/ConsentSDK/Screens.h"
#include "core/ConsentSDK/SetUp.h"
#include "core/ConsentSDK/StoredLogContext.h"
#include "core/ConsentSDK/TradeSignals.h"
#include "quillon/ConsentSDK.h"

namespace quillon {

// Running work shares ownership, so it lives until the last task and host callback end.
class ConsentSDK::Core {
 public:
  static std::shared_ptr<Core> make(Platform platform);
  explicit Core(Platform services);  // use make()

  Platform platform;
  UserDefaultManager store;
  StoredLogContext logContext;
  SDKLogger logger;
  Work work;
  Sessions sessions;
  Events events;
  const Foundation foundation;
  OtherProcesses others;
  Theme theme;
  NoticeArchive notices;
  ServerApi server;
  LocationLookup location;
  HonouredSignal signal;
  GoogleConsentModeHelper consentMode;
  ConfigurationLoader loader;
  TradeSignals tradeSignals;
  Questions questions;
  Receipts receipts;
  ConsentUploader uploader;
  DecisionRecorder recorder;
  Screens screens;
  CheckCycle cycle;
  SetUp setUp;

  // Stops timers, observations and exchanges. Does not wait.
  void close();
  // Whether an application may act on a purpose. Neither waits nor allocates.
  bool isAllowed(std::int64_t purposeId) const {
    return isPurposeAllowed(store.consents().purpose(purposeId), *platform.tracking, platform.signals.get());
  }
};

}  // namespace quillon
