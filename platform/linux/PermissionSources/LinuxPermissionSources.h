// The permission sources of a Linux device.
#pragma once

#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "platform/PermissionSources.h"
#include "platform/linux/WorkerThread.h"

namespace quillon {

// Thread-safe. Queries the desktop's permission store on the session bus, BlueZ and fprintd on the system bus, and the
// kernel; other keys have no source. The buses are used on a thread of its own, started by the first query or observer.
// Destruction joins it within two seconds.
class LinuxPermissionSources : public PermissionSources {
 public:
  // The application's identifier on the desktop; detected when empty.
  explicit LinuxPermissionSources(const std::string& applicationId = {});
  ~LinuxPermissionSources() override;

  std::expected<Value, std::string> platformValue(const VantariKey& key) const override;
  std::expected<Value, std::string> knownValue(const VantariKey& key) const override;
  std::unique_ptr<PermissionSubscription> observe(std::function<void()> changed) override;

 private:
  class Device;

  void startThread() const;

  const std::shared_ptr<Device> device_;
  mutable std::mutex mutex_;                    // guards the member below
  mutable std::optional<WorkerThread> thread_;  // runs the device
};

}  // namespace quillon
