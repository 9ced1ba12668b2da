// The desktop's appearance settings.
#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "quillon/BannerConfig.h"

namespace quillon {

struct DesktopAppearance {
  bool prefersDark = false;
  bool isContrastHigh = false;
  bool isMotionReduced = false;
  double textScale = 1;  // factor, finite and positive
  std::optional<Color> accent = std::nullopt;

  bool operator==(const DesktopAppearance&) const = default;
};

// Destruction ends the reports and waits for one running on another thread.
class DesktopSettingsSubscription {
 public:
  virtual ~DesktopSettingsSubscription() = default;
};

// Thread-safe. Never throws, never waits.
class DesktopSettings {
 public:
  virtual ~DesktopSettings() = default;

  // The last known appearance; defaults before the first answer, and for settings that the desktop does not have.
  virtual DesktopAppearance appearance() const = 0;

  // Calls `changed` from any thread when the appearance has changed, including by the first answer. It must not block.
  // The desktop is not queried before the first observer.
  [[nodiscard]] virtual std::unique_ptr<DesktopSettingsSubscription> observe(std::function<void()> changed) = 0;
};

}  // namespace quillon
