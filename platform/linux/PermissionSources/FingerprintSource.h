// Whether fingerprint recognition is available.
#pragma once

#include "platform/linux/Bus/BusService.h"
#include "platform/linux/PermissionSources/PermissionSource.h"

namespace quillon {

// As reported by fprintd, which is started by the call and reports no changes.
class FingerprintSource : public PermissionSource {
 public:
  explicit FingerprintSource(MessageBus& system);

  void ask(std::move_only_function<void(Answer)> done) override;

 private:
  BusService fprintd_;
};

}  // namespace quillon
