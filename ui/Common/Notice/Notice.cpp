#include "ui/Common/Notice/Notice.h"

#include <optional>
#include <string_view>
#include <utility>

#include "core/Json/Codec.h"
#include "core/Json/JsonMapping.h"
#include "core/Json/Record.h"
#include "core/Text/LocalizedTexts.h"
#include "ui/Common/Labels/Labels.h"
#include "ui/ConsentBanner/ButtonsByComplianceType.h"

namespace quillon {
namespace {

struct NoticeText {
  std::optional<std::string> address = std::nullopt;  // the link's URL
  std::string role;
  std::string text;
};

struct NoticeComponent {
  std::optional<std::string> description = std::nullopt;
  std::optional<std::string> licence = std::nullopt;
  std::string name;
  std::optional<std::string> vendor = std::nullopt;
  std::optional<std::string> website = std::nullopt;
};

struct NoticePurpose {
  std::vector<NoticeComponent> components;
  std::optional<std::string> description = std::nullopt;
  bool isEssential = false;
  std::string name;
  std::optional<std::string> note = std::nullopt;
  std::optional<std::int64_t> purposeId = std::nullopt;
};

struct Notice {
  std::string bannerType;
  ComplianceType complianceType = ComplianceType::noticeOnly;
  std::int64_t configurationVersion = 0;
  std::string language;
  std::string place;
  std::vector<NoticePurpose> purposes;
  std::string screen;
  std::vector<NoticeText> texts;
};

}  // namespace

// Members in key order, as canonical JSON requires.
template <>
inline constexpr auto fields<NoticeText> = std::tuple{
    Field<&NoticeText::address>{"address"},
    Field<&NoticeText::role>{"role"},
    Field<&NoticeText::text>{"text"},
};

template <>
inline constexpr auto fields<NoticeComponent> = std::tuple{
    Field<&NoticeComponent::description>{"description"},
    Field<&NoticeComponent::licence>{"licence"},
    Field<&NoticeComponent::name>{"name"},
    Field<&NoticeComponent::vendor>{"vendor"},
    Field<&NoticeComponent::website>{"website"},
};

template <>
inline constexpr auto fields<NoticePurpose> = std::tuple{
    Field<&NoticePurpose::components>{"components"},
    Field<&NoticePurpose::description>{"description"},
    Field<&NoticePurpose::isEssential>{"essential"},
    Field<&NoticePurpose::name>{"name"},
    Field<&NoticePurpose::note>{"note"},
    Field<&NoticePurpose::purposeId>{"purpose_id"},
};

template <>
inline constexpr auto fields<Notice> = std::tuple{
    Field<&Notice::bannerType>{"banner_type"},
    Field<&Notice::complianceType>{"compliance_type"},
    Field<&Notice::configurationVersion>{"configuration_version"},
    Field<&Notice::language>{"language"},
    Field<&Notice::place>{"place"},
    Field<&Notice::purposes>{"purposes"},
    Field<&Notice::screen>{"screen"},
    Field<&Notice::texts>{"texts"},
};

namespace {

std::optional<std::string> present(std::optional<std::string> text) {
  return text && !text->empty() ? std::move(text) : std::nullopt;
}

class NoticeMaker {
 public:
  NoticeMaker(std::string_view screen, const ScreenContent& content, const ScreenServices& sdk)
      : banner_(content.banner), language_(sdk.language()), labelLanguage_(languageOfLabels(sdk)) {
    const BannerConfig& banner = *banner_;
    notice_ = {.bannerType = std::string(rawValue(banner.bannerPosition.value_or(BannerPosition::bottom))),
               .complianceType = banner.complianceType.value_or(ComplianceType::noticeOnly),
               .configurationVersion = content.configuration->version.value_or(0),
               .language = language_,
               .place = content.place,
               .purposes = {},
               .screen = std::string(screen),
               .texts = {}};
  }

  void add(std::string_view role, std::string text, std::optional<std::string> address = std::nullopt) {
    if (text.empty()) return;
    notice_.texts.push_back({std::move(address), std::string(role), std::move(text)});
  }
  void add(std::string_view role, const std::optional<LocalizedText>& text) { add(role, localized(text)); }
  void add(Label label) {
    add(labelKeys.at(static_cast<std::size_t>(label)), labelText(label, banner_, labelLanguage_).text);
  }
  // A configured text, or else a label.
  void add(std::string_view role, const std::optional<LocalizedText>& text, Label otherwise) {
    std::string words = localized(text);
    add(role, words.empty() ? labelText(otherwise, banner_, labelLanguage_).text : std::move(words));
  }
  void add(BannerAction action, std::string_view role, std::optional<std::string> address = std::nullopt) {
    add(role, textOn(action, banner_, language_, labelLanguage_), std::move(address));
  }

  void add(const Purpose& purpose) {
    NoticePurpose shown{.components = {},
                        .description = present(localized(purpose.purposeDescription)),
                        .isEssential = purpose.disableOptOut.value_or(false),
                        .name = localized(purpose.purposeName),
                        .note = noteOf(purpose),
                        .purposeId = purpose.purposeId};
    if (purpose.sdks && !purpose.hideDetails.value_or(false)) {
      for (const SDK& sdk : *purpose.sdks) {
        shown.components.push_back({.description = present(localized(sdk.sdkDescription)),
                                    .licence = present(sdk.license),
                                    .name = localized(sdk.sdkName),
                                    .vendor = present(sdk.vendor),
                                    .website = present(sdk.website)});
      }
    }
    notice_.purposes.push_back(std::move(shown));
  }

  std::string text() const { return encode(notice_); }

 private:
  std::string localized(const std::optional<LocalizedText>& text) const {
    return text ? textIn(language_, *text) : std::string();
  }
  std::optional<std::string> noteOf(const Purpose& purpose) const {
    if (purpose.isATTMapped.value_or(false)) return present(localized(purpose.attDescription));
    if (purpose.disableOptOut.value_or(false)) return present(localized(purpose.optOutText));
    if (purpose.isOptedOutBySignal) return labelText(Label::privacySignalExplanation, banner_, labelLanguage_).text;
    return std::nullopt;
  }

  const std::optional<BannerConfig>& banner_;
  const std::string language_;
  const std::string labelLanguage_;
  Notice notice_;
};

}  // namespace

std::string bannerNotice(const ScreenContent& content, const ScreenServices& sdk) {
  if (!content.configuration || !content.banner) return {};
  const BannerConfig& banner = *content.banner;
  NoticeMaker maker("banner", content, sdk);
  maker.add("banner_heading", banner.bannerHeading);
  maker.add("banner_text", banner.bannerText);
  const BannerButtons buttons = buttonsByComplianceType(banner);
  for (const BannerAction action : buttons.answers) {
    maker.add(action, action == BannerAction::accept ? "accept" : "reject");
  }
  for (const BannerAction action : buttons.links) {
    switch (action) {
      case BannerAction::openPrivacyNotice:
        maker.add(action, "privacy_notice_text", banner.privacyNoticeLink);
        break;
      case BannerAction::openDSRPortal:
        maker.add(action, "dsr_portal", banner.dsrPortalLink);
        break;
      default:
        maker.add(action, "preference_center_link");
    }
  }
  if (buttons.close) maker.add(Label::close);
  for (const Purpose& purpose : content.configuration->purposes.value_or(std::vector<Purpose>())) maker.add(purpose);
  return maker.text();
}

std::string preferenceCenterNotice(const ScreenContent& content, const std::vector<Purpose>& purposes,
                                   const ScreenServices& sdk) {
  if (!content.configuration || !content.banner) return {};
  const BannerConfig& banner = *content.banner;
  NoticeMaker maker("preference_center", content, sdk);
  maker.add("preference_center_heading", banner.preferenceCenterHeading);
  maker.add("sdk_tab_heading", banner.sdkTabHeading, Label::purposesTab);
  maker.add("preference_center_description", banner.preferenceCenterDescription);
  maker.add("preference_center_guidance", banner.preferenceCenterGuidance);
  if (const auto& consentMode = content.configuration->gcmConfig;
      consentMode && consentMode->showGcmDescription.value_or(false)) {
    maker.add("gcm_description", consentMode->gcmDescription);
  }
  for (const Label label : {Label::selectAll, Label::unselectAll, Label::accepted, Label::rejected, Label::alwaysActive,
                            Label::saveChanges}) {
    maker.add(label);
  }
  for (const Purpose& purpose : purposes) maker.add(purpose);
  return maker.text();
}

}  // namespace quillon
