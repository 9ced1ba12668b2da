// The view model of the prompt to open the system settings for a permission.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "quillon/VantariKey.h"
#include "ui/ConsentBanner/ConsentBannerViewModel.h"

namespace quillon {

// Main queue only. Lives as long as the screen. Its content follows the banner's settingsPromptResult.
class SettingsPromptViewModel {
 public:
  SettingsPromptViewModel(std::shared_ptr<ConsentBannerViewModel> banner, VantariKey permission)
      : banner_(std::move(banner)), permissionId_(std::move(permission)) {}

  struct Content {
    std::string heading;
    std::string message;
    std::string settingsButton;  // neither button's text is empty
    std::string notNowButton;

    bool operator==(const Content&) const = default;
  };
  // nullopt until the texts are loaded.
  std::optional<Content> content() const;

  void openSettings();
  // Closes the prompt; it may be offered again.
  void notNow();
  // Closes the prompt permanently.
  void close();

  const VantariKey& permissionId() const { return permissionId_; }
  const std::shared_ptr<ConsentBannerViewModel>& banner() const { return banner_; }

 private:
  const std::shared_ptr<ConsentBannerViewModel> banner_;
  const VantariKey permissionId_;
};

}  // namespace quillon
