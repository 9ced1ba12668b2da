// The events of an instance.
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "core/ConsentSDK/Gates.h"
#include "core/ConsentSDK/Listeners.h"
#include "core/ConsentSDK/SDKListener.h"
#include "quillon/DecisionHistory.h"
#include "quillon/Explanations.h"
#include "quillon/Listeners.h"

namespace quillon {

// Each member is thread-safe.
struct Events {
  Events(const std::function<void(Job)>& onMain, std::function<bool(std::int64_t)> isAllowed)
      : readiness(onMain),
        consents(onMain),
        screens(onMain),
        uploads(onMain),
        bannerDue(onMain),
        gates(onMain, std::move(isAllowed)) {}

  // Whether listeners are notified of the decision.
  static bool isChange(const Decision& decision) {
    return decision.from != decision.to || decision.cause == DecisionCause::removed;
  }

  // Queues one notification per changed status; the returned job delivers them.
  Job announce(std::vector<Decision> decisions) {
    std::vector<Job> deliveries;
    for (Decision& decision : decisions) {
      if (isChange(decision)) deliveries.push_back(consents.queue(std::move(decision)));
    }
    return [this, deliveries = std::move(deliveries)]() mutable {
      for (Job& deliver : deliveries) deliver();
      gates.update();
    };
  }

  SDKListener readiness;
  Listeners<Decision> consents;
  Listeners<ScreenEvent> screens;
  Listeners<UploadEvent> uploads;
  Listeners<BannerExplanation> bannerDue;
  Gates gates;
};

}  // namespace quillon
