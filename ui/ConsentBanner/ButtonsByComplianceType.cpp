#include "ui/ConsentBanner/ButtonsByComplianceType.h"

namespace quillon {
namespace {

bool hasText(const std::optional<std::string>& text) {
  return text && !text->empty();
}

}  // namespace

BannerButtons buttonsByComplianceType(const BannerConfig& banner) {
  BannerButtons buttons{};
  if (banner.complianceType.value_or(ComplianceType::noticeOnly) != ComplianceType::noticeOnly) {
    buttons.answers.push_back(BannerAction::reject);
  }
  if (!banner.hideAcceptButton.value_or(false)) buttons.answers.push_back(BannerAction::accept);

  if (banner.preferenceCenterLink && !banner.preferenceCenterLink->empty()) {
    buttons.links.push_back(BannerAction::openPreferenceCenter);
  }
  if (hasText(banner.privacyNoticeLink)) buttons.links.push_back(BannerAction::openPrivacyNotice);
  if (banner.embedDSRPortalLink.value_or(false) && hasText(banner.dsrPortalLink)) {
    buttons.links.push_back(BannerAction::openDSRPortal);
  }

  buttons.close = !banner.hideCloseButton.value_or(false) || buttons.answers.empty();
  return buttons;
}

}  // namespace quillon
