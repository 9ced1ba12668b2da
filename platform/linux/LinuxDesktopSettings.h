// The settings of a Linux desktop.
#pragma once

#include <memory>
#include <mutex>
#include <optional>

#include "platform/DesktopSettings.h"
#include "platform/linux/WorkerThread.h"

namespace quillon {

// Thread-safe. From the settings portal (org.freedesktop.portal.Settings) on the session bus, asked and followed on a
// thread of its own, which the first observer starts and destruction joins. Without a bus, a portal or a setting, and
// where an answer has another form than it should, it is the default.
class LinuxDesktopSettings : public DesktopSettings {
 public:
  LinuxDesktopSettings();
  ~LinuxDesktopSettings() override;

  DesktopAppearance appearance() const override;
  std::unique_ptr<DesktopSettingsSubscription> observe(std::function<void()> changed) override;

 private:
  class Portal;

  const std::shared_ptr<Portal> portal_;
  std::mutex mutex_;                    // guards the member below
  std::optional<WorkerThread> thread_;  // runs the portal's loop
};

}  // namespace quillon
