// What the user has set for the whole desktop about how things look and move.
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

  // What is known; the default before the first answer, and for what the desktop does not say.
  virtual DesktopAppearance appearance() const = 0;

  // Calls `changed` from any thread when the appearance has changed, the first answer included. It must not block. The
  // desktop is not asked before the first observer.
  [[nodiscard]] virtual std::unique_ptr<DesktopSettingsSubscription> observe(std::function<void()> changed) = 0;
};

}  // namespace quillon
