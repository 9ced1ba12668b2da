#include "tools/diff/Differences.h"

#include <algorithm>
#include <map>
#include <optional>
#include <set>

#include "core/Banner/BannerSelection.h"
#include "core/Text/LocalizedTexts.h"
#include "tools/document/DocumentPath.h"

namespace quillon::tools {
namespace {

constexpr bool material = true;
constexpr bool cosmetic = false;

using Differences = std::vector<Difference>;

std::string name(const Purpose& purpose) {
  return "purpose " + std::to_string(*purpose.purposeId) + " " +
         inQuotes(textIn("en", purpose.purposeName.value_or(LocalizedText())));
}

std::string name(const SDK& sdk) {
  if (sdk.sdkName && !sdk.sdkName->empty()) return inQuotes(textIn("en", *sdk.sdkName));
  return sdk.namespaceId ? inQuotes(*sdk.namespaceId) : std::to_string(sdk.sdkId.value_or(0));
}

std::string list(const std::vector<std::int64_t>& numbers) {
  std::string text;
  for (const auto number : numbers) text += (text.empty() ? "" : ", ") + std::to_string(number);
  return text.empty() ? "no purpose" : text;
}

// Calls `compare` with the values of each key in both maps; null where missing.
template <class Map, class Compare>
void pairUp(const Map& before, const Map& after, Compare compare) {
  std::set<typename Map::key_type> keys;
  for (const auto& [key, value] : before) keys.insert(key);
  for (const auto& [key, value] : after) keys.insert(key);
  for (const auto& key : keys) {
    const auto was = before.find(key);
    const auto is = after.find(key);
    compare(key, was == before.end() ? nullptr : &was->second, is == after.end() ? nullptr : &is->second);
  }
}

// The structures by their identity.
template <class Key, class Record, class Identity>
std::map<Key, Record> byIdentity(const std::optional<std::vector<Record>>& records, Identity identity) {
  std::map<Key, Record> result;
  for (const Record& record : records.value_or(std::vector<Record>())) {
    if (const auto key = identity(record)) result.try_emplace(*key, record);
  }
  return result;
}

std::set<std::int64_t> boundToTracking(const MainConfiguration& configuration) {
  if (!configuration.isATTEnabled.value_or(false) || !configuration.attConfig) return {};
  const auto ids = configuration.attConfig->purposeIds.value_or(std::vector<std::int64_t>());
  return {ids.begin(), ids.end()};
}

void comparePurpose(const Purpose& was, Purpose is, Differences& found) {
  const std::string purpose = name(is);
  if (was.disableOptOut.value_or(false) != is.disableOptOut.value_or(false)) {
    found.push_back({material, purpose + (is.disableOptOut.value_or(false) ? " becomes essential: no opting out"
                                                                           : " is no longer essential")});
  }
  if (was.purposeName != is.purposeName) found.push_back({material, purpose + " has another name"});
  if (was.purposeDescription != is.purposeDescription) {
    found.push_back({material, purpose + " is described in other words"});
  }
  const auto identity = [](const SDK& sdk) {
    return sdk.sdkId ? std::optional(std::to_string(*sdk.sdkId)) : sdk.namespaceId;
  };
  pairUp(byIdentity<std::string>(was.sdks, identity), byIdentity<std::string>(is.sdks, identity),
         [&](const std::string&, const SDK* before, const SDK* after) {
           if (!before) found.push_back({material, purpose + " covers " + name(*after) + " too"});
           if (!after) found.push_back({material, purpose + " no longer covers " + name(*before)});
           if (before && after && before->collectingData != after->collectingData) {
             found.push_back({material, purpose + ": " + name(*after) +
                                            (after->collectingData.value_or(false) ? " collects data now"
                                                                                   : " no longer collects data")});
           } else if (before && after && !(*before == *after)) {
             found.push_back({cosmetic, purpose + ": " + name(*after) + " is presented otherwise"});
           }
         });
  is.purposeName = was.purposeName;
  is.purposeDescription = was.purposeDescription;
  is.sdks = was.sdks;
  is.disableOptOut = was.disableOptOut;
  if (!(is == was)) found.push_back({cosmetic, purpose + " is presented otherwise"});
}

void comparePurposes(const MainConfiguration& before, const MainConfiguration& after, Differences& found) {
  const auto identity = [](const Purpose& purpose) { return purpose.purposeId; };
  pairUp(byIdentity<std::int64_t>(before.purposes, identity), byIdentity<std::int64_t>(after.purposes, identity),
         [&](std::int64_t, const Purpose* was, const Purpose* is) {
           if (!was) found.push_back({material, name(*is) + " is new: its default holds until the user decides"});
           if (!is) found.push_back({material, name(*was) + " goes"});
           if (was && is) comparePurpose(*was, *is, found);
         });
  const auto wereBound = boundToTracking(before);
  const auto areBound = boundToTracking(after);
  for (const auto id : areBound) {
    if (!wereBound.contains(id)) {
      found.push_back({material, "purpose " + std::to_string(id) + " follows the tracking status of the device"});
    }
  }
  for (const auto id : wereBound) {
    if (!areBound.contains(id)) {
      found.push_back({material, "purpose " + std::to_string(id) + " no longer follows the tracking status"});
    }
  }
}

void compareSignals(const MainConfiguration& before, const MainConfiguration& after, Differences& found) {
  const auto named = [](const MainConfiguration& configuration) {
    auto purposes = configuration.privacySignalPurposes.value_or(std::vector<std::int64_t>());
    std::ranges::sort(purposes);
    return purposes;
  };
  const auto were = named(before);
  const auto are = named(after);
  if (were == are) return;
  found.push_back({material, "a privacy signal opts out of " + list(are) + " in place of " + list(were)});
}

void comparePermissions(const MainConfiguration& before, const MainConfiguration& after, Differences& found) {
  const auto identity = [](const AppPermission& permission) { return permission.permissionId; };
  pairUp(byIdentity<VantariKey>(before.permissions, identity), byIdentity<VantariKey>(after.permissions, identity),
         [&](const VantariKey& key, const AppPermission* was, const AppPermission* is) {
           const std::string permission = "permission " + inQuotes(key.rawValue());
           if (!was) found.push_back({material, permission + " is new"});
           if (!is) found.push_back({material, permission + " goes"});
           if (was && is && !(*was == *is)) found.push_back({cosmetic, permission + " is presented otherwise"});
         });
}

std::string intervalOf(const BannerConfig& banner) {
  return banner.bannerReappearanceTime.value_or(std::string(defaultBannerInterval));
}

void compareBanner(const std::string& place, const BannerConfig& was, BannerConfig is, Differences& found) {
  const auto type = [](const BannerConfig& banner) {
    return banner.complianceType.value_or(ComplianceType::noticeOnly);
  };
  if (type(was) != type(is)) {
    found.push_back({material, place + ": " + std::string(rawValue(type(is))) + " in place of " +
                                   std::string(rawValue(type(was))) + ", also for what was not decided yet"});
  }
  if (intervalOf(was) != intervalOf(is)) {
    found.push_back({material, place + ": an answer lasts " + inQuotes(intervalOf(is)) + " in place of " +
                                   inQuotes(intervalOf(was)) + ", also one that was given before"});
  }
  if (was.recordConsentUponAppStart != is.recordConsentUponAppStart) {
    found.push_back({material, place + (is.recordConsentUponAppStart.value_or(false)
                                            ? ": defaults are recorded when the banner appears"
                                            : ": defaults are not recorded when the banner appears")});
  }
  is.complianceType = was.complianceType;
  is.bannerReappearanceTime = was.bannerReappearanceTime;
  is.recordConsentUponAppStart = was.recordConsentUponAppStart;
  if (!(is == was)) found.push_back({cosmetic, place + ": the banner has other texts or another look"});
}

// Compares the banners shown at each location that either configuration names.
void compareBanners(const MainConfiguration& before, const MainConfiguration& after, Differences& found) {
  std::set<std::optional<std::string>> places{std::nullopt};
  for (const auto* configuration : {&before, &after}) {
    if (!configuration->bannerConfig) continue;
    for (const auto& [place, category] : configuration->bannerConfig->locations) {
      if (place != "default") places.insert(place);
    }
  }
  for (const auto& place : places) {
    const std::string where = place ? "users in " + inQuotes(*place) : "users elsewhere";
    const BannerConfig* was = selectBanner(before, place);
    const BannerConfig* is = selectBanner(after, place);
    if (!was && is) found.push_back({material, where + " get a banner"});
    if (was && !is) found.push_back({material, where + " get no banner any more"});
    if (was && is) compareBanner(where, *was, *is, found);
  }
}

using Mappings = std::map<std::string, DefaultMapping, std::less<>>;

// Keyed by region; the default under "".
Mappings mappingsOf(const MainConfiguration& configuration) {
  if (!configuration.isGcmEnabled.value_or(false) || !configuration.gcmConfig) return {};
  Mappings mappings = configuration.gcmConfig->regionOverrides.value_or(Mappings());
  if (configuration.gcmConfig->defaultMapping) mappings.insert_or_assign("", *configuration.gcmConfig->defaultMapping);
  return mappings;
}

void compareConsentMode(const MainConfiguration& before, const MainConfiguration& after, Differences& found) {
  pairUp(mappingsOf(before), mappingsOf(after),
         [&](const std::string& region, const DefaultMapping* was, const DefaultMapping* is) {
           const std::string where = region.empty() ? "consent mode" : "consent mode in " + inQuotes(region);
           if (!was) found.push_back({material, where + " is new"});
           if (!is) found.push_back({material, where + " goes"});
           if (!was || !is) return;
           const auto compare = [&](const char* signal,
                                    std::optional<std::vector<std::int64_t>> DefaultMapping::* ids) {
             const auto dependedOn = (was->*ids).value_or(std::vector<std::int64_t>());
             const auto dependsOn = (is->*ids).value_or(std::vector<std::int64_t>());
             if (dependedOn == dependsOn) return;
             found.push_back({material, where + ": " + signal + " depends on " + list(dependsOn) + " in place of " +
                                            list(dependedOn)});
           };
           compare("analytics_storage", &DefaultMapping::analyticsStorage);
           compare("ad_storage", &DefaultMapping::adStorage);
           compare("ad_user_data", &DefaultMapping::adUserData);
           compare("ad_personalization", &DefaultMapping::adPersonalization);
         });
}

}  // namespace

Differences differences(const MainConfiguration& before, const MainConfiguration& after) {
  Differences found;
  comparePurposes(before, after, found);
  compareSignals(before, after, found);
  comparePermissions(before, after, found);
  compareBanners(before, after, found);
  compareConsentMode(before, after, found);
  if (before.translations != after.translations) found.push_back({cosmetic, "labels of the screens change"});
  if (!(before.settingPrompt == after.settingPrompt) ||
      before.isSettingsPromptEnabled.value_or(false) != after.isSettingsPromptEnabled.value_or(false)) {
    found.push_back({cosmetic, "the prompt for the system settings changes"});
  }
  if (found.empty() && !(before == after)) found.push_back({cosmetic, "nothing that users are asked about"});
  return found;
}

std::string whoIsAskedAgain(const MainConfiguration& before, const MainConfiguration& after) {
  const auto was = before.version.value_or(0);
  const auto is = after.version.value_or(0);
  const auto found = differences(before, after);
  const bool isMaterial = std::ranges::any_of(found, &Difference::isMaterial);
  if (is > was && after.reConsentEnabled.value_or(false)) {
    return "everyone who has answered, since version " + std::to_string(is) + " is newer than " + std::to_string(was) +
           " and re_consent_enabled is true" + (isMaterial ? "" : "; nothing material asks for that");
  }
  return "nobody before the answer expires, since " +
         (is > was ? std::string("re_consent_enabled is not true")
                   : "version " + std::to_string(is) + " is not newer than " + std::to_string(was)) +
         (isMaterial ? "; material changes would ask for it" : "");
}

}  // namespace quillon::tools
