#include "core/Banner/BannerSelection.h"

#include <algorithm>
#include <charconv>

#include "core/Text/Ascii.h"

namespace quillon {
namespace {

constexpr std::string_view defaultEntry = "default";
constexpr std::int64_t monthsOfYear = 12;
constexpr std::int64_t longestCount = 10'000;

const BannerConfig* category(const ConsentBannerConfig& banners, std::string_view place) {
  const auto location = banners.locations.find(place);
  if (location == banners.locations.end()) return nullptr;
  auto found = banners.categories.find(location->second);
  if (found == banners.categories.end()) {
    const auto named = banners.namesMap.find(location->second);
    if (named != banners.namesMap.end()) found = banners.categories.find(named->second);
  }
  return found == banners.categories.end() ? nullptr : &found->second;
}

}  // namespace

const BannerConfig* selectBanner(const MainConfiguration& configuration, const std::optional<std::string>& location) {
  if (!configuration.bannerConfig) return nullptr;
  const ConsentBannerConfig& banners = *configuration.bannerConfig;
  if (location) {
    if (const auto* banner = category(banners, *location)) return banner;
    if (const auto* banner = category(banners, location->substr(0, location->find('#')))) return banner;
  }
  if (const auto* banner = category(banners, defaultEntry)) return banner;
  if (const auto byName = banners.categories.find(defaultEntry); byName != banners.categories.end()) {
    return &byName->second;
  }
  return banners.categories.empty() ? nullptr : &banners.categories.begin()->second;
}

bool dependsOnLocation(const MainConfiguration& configuration) {
  const auto& banners = configuration.bannerConfig;
  if (banners &&
      std::ranges::any_of(banners->locations, [](const auto& entry) { return entry.first != defaultEntry; })) {
    return true;
  }
  const auto& consentMode = configuration.gcmConfig;
  return configuration.isGcmEnabled.value_or(false) && consentMode && consentMode->regionOverrides &&
         !consentMode->regionOverrides->empty();
}

std::optional<std::int64_t> bannerIntervalMonths(std::string_view text) noexcept {
  std::int64_t count = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), count);
  const std::string_view rest(end, static_cast<std::size_t>(text.data() + text.size() - end));
  if (error != std::errc() || count < 0 || count > longestCount || !rest.starts_with(' ')) return std::nullopt;
  const std::string_view unit = rest.substr(1);
  if (equalButForCase(unit, "month")) return count;
  if (equalButForCase(unit, "year")) return count * monthsOfYear;
  return std::nullopt;
}

}  // namespace quillon
