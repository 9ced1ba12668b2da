// Whether the application may use Bluetooth.
#pragma once

#include <functional>

#include "platform/linux/PermissionSources/BusService.h"
#include "platform/linux/PermissionSources/PermissionSource.h"

namespace quillon {

// As BlueZ tells it. A Linux system asks nobody about a single application: who reaches an adapter that is switched on
// may use it.
class BluetoothSource : public PermissionSource {
 public:
  // Calls `changed` on the loop's thread when an adapter was switched on or off, came or went.
  BluetoothSource(MessageBus& system, const std::function<void()>& changed);

  void ask(std::move_only_function<void(Answer)> done) override;

 private:
  BusService bluez_;
};

}  // namespace quillon
