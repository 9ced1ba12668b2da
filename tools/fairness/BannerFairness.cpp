#include <algorithm>
#include <string>

#include "core/Text/LocalizedTexts.h"
#include "tools/fairness/AskedBanners.h"
#include "tools/fairness/FairnessRules.h"
#include "tools/fairness/Wording.h"
#include "ui/Common/Theme/Contrast.h"
#include "ui/ConsentBanner/ButtonsByComplianceType.h"

namespace quillon::tools {
namespace {

bool asks(const BannerConfig& banner) {
  return typeOf(banner) != ComplianceType::noticeOnly;
}

bool hasPurposesToAskAbout(const MainConfiguration& configuration) {
  return configuration.purposes && std::ranges::any_of(*configuration.purposes, [](const Purpose& purpose) {
           return !purpose.disableOptOut.value_or(false);
         });
}

bool isMissing(const std::optional<std::string>& text) {
  return !text || text->empty();
}

// In characters, not bytes.
std::size_t lengthOf(std::string_view text) {
  return static_cast<std::size_t>(
      std::ranges::count_if(text, [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }));
}

// Calls with each text that the user reads before answering, in each language.
template <class Visit>
void forEachBannerText(const BannerConfig& banner, const DocumentPath& path, Visit visit) {
  for (const auto& [key, member] : configured::bannerTexts) {
    if (!(banner.*member)) continue;
    for (const auto& [language, text] : *(banner.*member)) visit(path.at(key).at(language), text);
  }
}

template <class Find>
void reportWords(const MainConfiguration& configuration, const Report& report, Find find, std::string_view what) {
  forEachBanner(configuration, [&](const BannerConfig& banner, const DocumentPath& path, std::string_view) {
    forEachBannerText(banner, path, [&](const DocumentPath& place, const std::string& text) {
      const std::string_view phrase = find(text);
      if (!phrase.empty()) report(place, inQuotes(phrase) + ' ' + std::string(what));
    });
  });
}

}  // namespace

void europeIsAskedBefore(const MainConfiguration& configuration, const Report& report) {
  if (!hasPurposesToAskAbout(configuration)) return;
  forEachBanner(configuration, [&](const BannerConfig& banner, const DocumentPath& path, std::string_view country) {
    if (country.empty() || typeOf(banner) == ComplianceType::optIn) return;
    report(path.at("compliance_type"), "is " + std::string(rawValue(typeOf(banner))) + " for users in " +
                                           inQuotes(country) + ", where purposes need consent before they begin");
  });
}

void refusingSaysSo(const MainConfiguration& configuration, const Report& report) {
  forEachBanner(configuration, [&](const BannerConfig& banner, const DocumentPath& path, std::string_view) {
    if (!asks(banner) || !banner.reject) return;
    for (const auto& [language, text] : *banner.reject) {
      const auto place = path.at("reject").at(language);
      if (const auto phrase = evasionIn(text); !phrase.empty()) {
        report(place, inQuotes(text) + " does not say that it refuses");
      } else if (banner.accept && text == textIn(language, *banner.accept)) {
        report(place, "is the text of the button that accepts, too");
      }
    }
  });
}

void answersAreAlike(const MainConfiguration& configuration, const Report& report) {
  constexpr std::size_t longLabel = 24;
  forEachBanner(configuration, [&](const BannerConfig& banner, const DocumentPath& path, std::string_view) {
    if (!asks(banner)) return;
    if (banner.hideAcceptButton.value_or(false) && typeOf(banner) == ComplianceType::optIn) {
      report(path.at("hide_accept_toggle"), "is true; users can refuse but not agree");
    }
    if (!banner.accept || !banner.reject) return;
    for (const auto& [language, refusing] : *banner.reject) {
      const auto accepting = textIn(language, *banner.accept);
      const auto [shorter, longer] = std::minmax({lengthOf(accepting), lengthOf(refusing)});
      const auto place = path.at("reject").at(language);
      if (longer > longLabel && longer > 3 * shorter) {
        report(place, "is of another length than the button that accepts: " + inQuotes(refusing) + " and " +
                          inQuotes(accepting));
      }
      const auto isLoud = [](const std::string& text) {
        return lengthOf(text) > 3 && std::ranges::none_of(text, [](char c) { return c >= 'a' && c <= 'z'; }) &&
               std::ranges::any_of(text, [](char c) { return c >= 'A' && c <= 'Z'; });
      };
      const bool hasMarks = accepting.contains('!') || accepting.contains("<b>") || accepting.contains("<strong>");
      const bool refusalHasMarks = refusing.contains('!') || refusing.contains("<b>") || refusing.contains("<strong>");
      if (isLoud(accepting) != isLoud(refusing) || hasMarks != refusalHasMarks) {
        report(place, "has another weight than the button that accepts: " + inQuotes(refusing) + " and " +
                          inQuotes(accepting));
      }
    }
  });
}

void nothingButAnswersConsents(const MainConfiguration& configuration, const Report& report) {
  reportWords(configuration, report, silentConsentIn, "makes consent of something that is no answer");
  forEachBanner(configuration, [&](const BannerConfig& banner, const DocumentPath& path, std::string_view country) {
    if (country.empty() || !banner.recordConsentUponAppStart.value_or(false)) return;
    if (typeOf(banner) == ComplianceType::optIn || !hasPurposesToAskAbout(configuration)) return;
    report(path.at("record_consent_upon_app_start"),
           "is true: users in " + inQuotes(country) + " have consented before they answer");
  });
}

void wordsDoNotPush(const MainConfiguration& configuration, const Report& report) {
  reportWords(configuration, report, pressureIn, "pushes users to an answer");
}

void changingIsOneStepAway(const MainConfiguration& configuration, const Report& report) {
  forEachBanner(configuration, [&](const BannerConfig& banner, const DocumentPath& path, std::string_view) {
    if (!asks(banner)) return;
    const auto& link = banner.preferenceCenterLink;
    if (link && !textIn("en", *link).empty()) return;
    report(path.at("preference_center_link"), "is missing; users cannot decide by purpose, nor see where to change it");
  });
}

void refusalsLast(const MainConfiguration& configuration, const Report& report) {
  constexpr std::int64_t leastMonths = 6;
  forEachBanner(configuration, [&](const BannerConfig& banner, const DocumentPath& path, std::string_view) {
    if (!asks(banner) || !banner.bannerReappearanceTime) return;
    const auto months = bannerIntervalMonths(*banner.bannerReappearanceTime);
    if (!months || *months >= leastMonths) return;
    report(path.at("banner_reappearance_time"),
           inQuotes(*banner.bannerReappearanceTime) + " asks again within six months of a refusal");
  });
}

void noticeIsOneStepAway(const MainConfiguration& configuration, const Report& report) {
  forEachBanner(configuration, [&](const BannerConfig& banner, const DocumentPath& path, std::string_view) {
    if (isMissing(banner.privacyNoticeLink)) {
      report(path.at("privacy_notice_link"), "is missing; the first layer leads to no privacy notice");
    }
  });
}

void choicesAreVisible(const MainConfiguration& configuration, const Report& report) {
  forEachBanner(configuration, [&](const BannerConfig& banner, const DocumentPath& path, std::string_view) {
    if (!banner.customPaletteTheme) return;
    const CustomColors& colors = *banner.customPaletteTheme;
    const auto palette = path.at("palette");
    const auto background = colorFromText(colors.bannerBackground);
    const double text = contrast(colorFromText(colors.bannerText), background);
    const double links = contrast(colorFromText(colors.bannerLinks), background);
    if (links < legible) {
      report(palette.at("banner_links"), "hides the way to the choices on its background");
    } else if (text < legible) {
      report(palette.at("banner_text"), "hides what is asked on its background");
    }
    const auto on = colors.togglePrimarycolor;
    const auto off = colors.toggleSecondarycolor;
    if (on && off && contrast(colorFromText(*on), colorFromText(*off)) < 1.1) {
      report(palette.at("toggle_secondary"), "makes a switch look the same whether it is on or off");
    }
  });
}

}  // namespace quillon::tools
