// The privacy signals of a Linux device.
#pragma once

#include <memory>
#include <mutex>
#include <optional>

#include "platform/PrivacySignals.h"
#include "platform/linux/WorkerThread.h"

namespace quillon {

// Thread-safe. On while the variable DO_NOT_TRACK holds anything but "0" and nothing, which is read once, or one of the
// desktop's privacy switches (org.gnome.desktop.privacy, where that is installed) stands as somebody has set it who
// wants privacy: a default is no signal. The desktop is asked on a thread of its own, which the first question or the
// first observer starts; destruction joins it.
class LinuxPrivacySignals : public PrivacySignals {
 public:
  LinuxPrivacySignals();
  ~LinuxPrivacySignals() override;

  bool isOn() const override;
  std::unique_ptr<PrivacySignalSubscription> observe(std::function<void()> changed) override;

 private:
  class Desktop;

  bool hasThread() const;  // starts it where that is possible

  const bool isInEnvironment_;
  const std::shared_ptr<Desktop> desktop_;
  mutable std::mutex mutex_;                    // guards the member below
  mutable std::optional<WorkerThread> thread_;  // runs the desktop's loop
};

}  // namespace quillon
