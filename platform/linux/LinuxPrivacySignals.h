// The privacy signals of a Linux device.
#pragma once

#include <memory>
#include <mutex>
#include <optional>

#include "platform/PrivacySignals.h"
#include "platform/linux/WorkerThread.h"

namespace quillon {

// Thread-safe. On while the environment variable DO_NOT_TRACK (read once) is neither empty nor "0", or the user has set
// a privacy switch of the desktop (org.gnome.desktop.privacy, if installed) in favour of privacy; its default is no
// signal. The desktop is queried on a thread of its own, started by the first query or observer; destruction joins it.
class LinuxPrivacySignals : public PrivacySignals {
 public:
  LinuxPrivacySignals();
  ~LinuxPrivacySignals() override;

  bool isOn() const override;
  std::unique_ptr<PrivacySignalSubscription> observe(std::function<void()> changed) override;

 private:
  class Desktop;

  bool hasThread() const;  // starts it if possible

  const bool isInEnvironment_;
  const std::shared_ptr<Desktop> desktop_;
  mutable std::mutex mutex_;                    // guards the member below
  mutable std::optional<WorkerThread> thread_;  // runs the desktop's loop
};

}  // namespace quillon
