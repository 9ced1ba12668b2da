#include "tools/fairness/DrawnFairness.h"
#include "core/Text/LogText.h"

#include <boost/json/object.hpp>
#include <set>

#include "tools/fairness/AskedBanners.h"
#include "tools/preview/WarmPreview.h"
#include "tools/validate/Languages.h"

namespace quillon::tools {
namespace {

// A location whose users get the banner; nullopt if there is none.
std::optional<std::string> placeOf(const MainConfiguration& configuration, const BannerConfig& banner) {
  if (selectBanner(configuration, std::nullopt) == &banner) return "";
  for (const auto& [place, category] : configuration.bannerConfig->locations) {
    if (selectBanner(configuration, place) == &banner) return place;
  }
  return std::nullopt;
}

std::string sizes(const std::vector<preview::MeasuredAnswer>& answers) {
  std::string text;
  for (const auto& answer : answers) {
    text += (text.empty() ? "" : ", ") + inQuotes(answer.text) + " of " + std::to_string(answer.width) + " by " +
            std::to_string(answer.height) + " pixels";
  }
  return text;
}

}  // namespace

void drawnAnswersAreAlike(const std::string& document, const MainConfiguration& configuration, WarmPreview& screens,
                          const Report& report) {
  const auto languages = languagesOf(configuration);
  forEachBanner(configuration, [&](const BannerConfig& banner, const DocumentPath& path, std::string_view) {
    const auto place = placeOf(configuration, banner);
    if (!place || typeOf(banner) == ComplianceType::noticeOnly) return;
    for (const auto language : languages) {
      const auto drawn = screens.draw(
          {{"screen", "banner"}, {"language", language}, {"location", *place}, {"size", "390x844"}}, document);
      if (!drawn) {
        report(path, "cannot be measured in " + excerptForLog(language) + ": " + drawn.error());
      } else if (!preview::areAlike(drawn->answers)) {
        report(path, "has answers of another weight on the screen, in " + excerptForLog(language) + ": " +
                         sizes(drawn->answers));
      }
    }
  });
}

}  // namespace quillon::tools
