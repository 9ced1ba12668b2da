#include "ui/ConsentBanner/ButtonsByComplianceType.h"

#include "core/Text/LocalizedTexts.h"
#include "ui/Common/Labels/Labels.h"

namespace quillon {
namespace {

bool hasText(const std::optional<std::string>& text) {
  return text && !text->empty();
}

std::string configuredText(const std::optional<BannerConfig>& banner,
                           std::optional<LocalizedText> BannerConfig::* member, std::string_view language) {
  const auto* text = banner && (*banner).*member ? &*((*banner).*member) : nullptr;
  return text ? textIn(language, *text) : std::string();
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

std::string textOn(BannerAction action, const std::optional<BannerConfig>& banner, std::string_view language,
                   std::string_view labelLanguage) {
  const auto words = [&](std::optional<LocalizedText> BannerConfig::* member, Label otherwise) {
    std::string text = configuredText(banner, member, language);
    return text.empty() ? labelText(otherwise, banner, labelLanguage).text : text;
  };
  switch (action) {
    case BannerAction::accept:
      return words(&BannerConfig::accept, Label::accept);
    case BannerAction::reject:
      return words(&BannerConfig::reject, Label::reject);
    case BannerAction::openPreferenceCenter:
      return words(&BannerConfig::preferenceCenterLink, Label::purposes);
    case BannerAction::openPrivacyNotice:
      return words(&BannerConfig::privacyNoticeText, Label::privacyNotice);
    case BannerAction::openDSRPortal:
      return labelText(Label::dsrPortal, banner, labelLanguage).text;
    case BannerAction::close:
      break;
  }
  return labelText(Label::close, banner, labelLanguage).text;
}

}  // namespace quillon
