// The permission statuses of a Linux device.
#pragma once

#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "platform/PermissionSources.h"
#include "platform/linux/WorkerThread.h"

namespace quillon {

// Thread-safe. Asks the desktop's permission store on the session bus, BlueZ and fprintd on the system bus, and the
// kernel; a key that is none of their business has no source. The buses are asked on a thread of its own, which is
// started by the first question for them or the first observer. Destruction joins it, within two seconds.
class LinuxPermissionSources : public PermissionSources {
 public:
  // The desktop's name of the application; when it is empty it is looked for.
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
