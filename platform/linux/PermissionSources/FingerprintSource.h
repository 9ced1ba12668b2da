// Whether the user can be recognised by a fingerprint.
#pragma once

#include "platform/linux/PermissionSources/BusService.h"
#include "platform/linux/PermissionSources/PermissionSource.h"

namespace quillon {

// As fprintd tells it, which is started for the question and reports no changes.
class FingerprintSource : public PermissionSource {
 public:
  explicit FingerprintSource(MessageBus& system);

  void ask(std::move_only_function<void(Answer)> done) override;

 private:
  BusService fprintd_;
};

}  // namespace quillon
