// The settings of a Linux desktop.
#pragma once

#include <memory>
#include <mutex>
#include <optional>

#include "platform/DesktopSettings.h"
#include "platform/linux/WorkerThread.h"

namespace quillon {

// Thread-safe. Queries and follows the settings portal (org.freedesktop.portal.Settings) on the session bus, on a
// thread of its own, which the first observer starts and destruction joins. Without a bus, a portal or a setting, and
// for a malformed value, the default applies.
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
