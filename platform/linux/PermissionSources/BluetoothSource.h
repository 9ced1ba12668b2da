// Whether the application may use Bluetooth.
#pragma once

#include <functional>

#include "platform/linux/Bus/BusService.h"
#include "platform/linux/PermissionSources/PermissionSource.h"

namespace quillon {

// As reported by BlueZ. Linux has no per-application permission: an application may use an adapter that is switched on.
class BluetoothSource : public PermissionSource {
 public:
  // Calls `changed` on the loop's thread when an adapter was switched on or off, added or removed.
  BluetoothSource(MessageBus& system, const std::function<void()>& changed);

  void ask(std::move_only_function<void(Answer)> done) override;

 private:
  BusService bluez_;
};

}  // namespace quillon
