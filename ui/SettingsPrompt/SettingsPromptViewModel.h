// The prompt that leads to the system settings for one permission.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "quillon/VantariKey.h"
#include "ui/ConsentBanner/ConsentBannerViewModel.h"

namespace quillon {

// For the main queue only. Lives as long as the screen. What it shows follows the banner's settingsPromptResult.
class SettingsPromptViewModel {
 public:
  SettingsPromptViewModel(std::shared_ptr<ConsentBannerViewModel> banner, VantariKey permission)
      : banner_(std::move(banner)), permissionId_(std::move(permission)) {}

  struct Content {
    std::string heading;
    std::string message;
    std::string settingsButton;  // never empty, nor is the other
    std::string notNowButton;

    bool operator==(const Content&) const = default;
  };
  // Nothing unless the texts are loaded.
  std::optional<Content> content() const;

  void openSettings();
  // Leaves the prompt; it may be offered again.
  void notNow();
  // Leaves the prompt for good: it is not offered again.
  void close();

  const VantariKey& permissionId() const { return permissionId_; }
  const std::shared_ptr<ConsentBannerViewModel>& banner() const { return banner_; }

 private:
  const std::shared_ptr<ConsentBannerViewModel> banner_;
  const VantariKey permissionId_;
};

}  // namespace quillon
