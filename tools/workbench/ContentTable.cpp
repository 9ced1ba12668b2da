#include "tools/workbench/ContentTable.h"

#include <algorithm>
#include <boost/json/object.hpp>
#include <ranges>
#include <string_view>
#include <vector>

#include "core/Banner/BannerSelection.h"
#include "core/Text/LocalizedTexts.h"
#include "tools/fairness/AskedBanners.h"
#include "ui/Common/Labels/Languages.h"

namespace quillon::tools {
namespace {

namespace json = boost::json;

constexpr std::size_t mostRows = 200;
constexpr std::size_t mostLanguages = 100;
constexpr std::size_t longestText = 1000;  // bytes

struct Group {
  const BannerConfig* banner;
  json::array places;
};

// Each banner with its locations, in the order of locations.
std::vector<Group> groupsOf(const MainConfiguration& configuration) {
  std::vector<Group> groups;
  const auto add = [&](const std::string& place) {
    const auto* banner = selectBanner(configuration, place.empty() ? std::nullopt : std::optional(place));
    if (!banner) return;
    auto group = std::ranges::find(groups, banner, &Group::banner);
    if (group == groups.end()) group = groups.insert(group, {banner, {}});
    group->places.push_back(json::string(place));
  };
  for (const auto& [place, category] : configuration.bannerConfig->locations) {
    if (place != "default") add(place);
  }
  add({});
  return groups;
}

std::string_view beginningOf(std::string_view text) {
  if (text.size() <= longestText) return text;
  auto end = longestText;
  while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) --end;  // back to a character boundary
  return text.substr(0, end);
}

json::object textsOf(const BannerConfig& banner, std::string_view language) {
  json::object texts;
  bool isForeign = false;
  const auto add = [&](std::string_view key, const std::optional<LocalizedText>& text, Label otherwise) {
    if (text && !text->empty()) {
      texts[key] = beginningOf(textIn(language, *text));
      isForeign = isForeign || !text->contains(language);
    } else if (const auto* labels = labelLanguage(language)) {
      texts[key] = labels->text(otherwise);
    } else {
      texts[key] = englishLabels().text(otherwise);
      isForeign = true;
    }
  };
  add("accept", banner.accept, Label::accept);
  if (typeOf(banner) != ComplianceType::noticeOnly) add("reject", banner.reject, Label::reject);
  const auto addOwn = [&](std::string_view key, const std::optional<LocalizedText>& text) {
    if (!text || text->empty()) return;
    texts[key] = beginningOf(textIn(language, *text));
    isForeign = isForeign || !text->contains(language);
  };
  addOwn("heading", banner.bannerHeading);
  addOwn("text", banner.bannerText);
  texts["isForeign"] = isForeign;
  return texts;
}

}  // namespace

json::array contentTable(const MainConfiguration& configuration, const Languages& languages) {
  json::array rows;
  if (!configuration.bannerConfig) return rows;
  const auto& categories = configuration.bannerConfig->categories;
  for (auto& [banner, places] : groupsOf(configuration)) {
    if (rows.size() == mostRows) break;
    const auto category = std::ranges::find(categories, banner, [](const auto& entry) { return &entry.second; });
    json::object texts;
    for (const auto language : languages | std::views::take(mostLanguages))
      texts[language] = textsOf(*banner, language);
    rows.push_back({{"places", std::move(places)},
                    {"category", category->first},
                    {"type", rawValue(typeOf(*banner))},
                    {"validity", banner->bannerReappearanceTime.value_or(std::string(defaultBannerInterval))},
                    {"texts", std::move(texts)}});
  }
  return rows;
}

}  // namespace quillon::tools
