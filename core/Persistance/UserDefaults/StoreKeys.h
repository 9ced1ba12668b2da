// The store's keys, apart from purpose identifiers and permission keys.
#pragma once

#include <algorithm>
#include <array>
#include <string_view>

#include "platform/KeyValueSuite.h"

// One row per key; constants and list are generated from it.
// clang-format off
#define QUILLON_STORE_KEYS(ROW) \
  ROW(arePurposesChanged, "ARE_PURPOSES_CHANGED") \
  ROW(purposesChangeTimestamp, "PURPOSES_CHANGE_TIMESTAMP") \
  ROW(arePermissionsChanged, "ARE_PERMISSIONS_CHANGED") \
  ROW(permissionsChangeTimestamp, "PERMISSIONS_CHANGE_TIMESTAMP") \
  ROW(consentGivenType, "CONSENT_GIVEN_TYPE") \
  ROW(currentComplianceType, "CURRENT_COMPLIANCE_TYPE") \
  ROW(pendingPurposesList, "PENDING_PURPOSES_LIST") \
  ROW(pendingPermissionsList, "PENDING_PERMISSIONS_LIST") \
  ROW(uploadConsentRequestPending, "UPLOAD_CONSENT_REQUEST_PENDING") \
  /* The newest journal record at a final rejection of an upload; records up to it are not sent again. */ \
  ROW(uploadRefusedUpTo, "UPLOAD_REFUSED_UP_TO") \
  ROW(subjectId, "SUBJECT_ID") \
  ROW(xAuthToken, "X_AUTH_TOKEN") \
  ROW(configurationVersion, "SDK_VERSION") \
  ROW(isATTEnabled, "IS_ATT_ENABLED") \
  /* The purposes that the configuration applied last binds to app tracking. */ \
  ROW(trackingPurposesList, "TRACKING_PURPOSES_LIST") \
  /* The purposes whose consent is the user's own answer, and those decided by a privacy signal; ascending. */ \
  ROW(answeredPurposesList, "ANSWERED_PURPOSES_LIST") \
  ROW(signalPurposesList, "SIGNAL_PURPOSES_LIST") \
  /* The application ids under which anything was decided. */ \
  ROW(decidedApplicationsList, "DECIDED_APPLICATIONS_LIST") \
  /* The hash of the newest entry of the history. */ \
  ROW(historyHead, "HISTORY_HEAD") \
  ROW(languageCode, "LANGUAGECODE") \
  ROW(lastModeUsed, "LAST_MODE_USED") \
  ROW(bannerInterval, "BANNER_INTERVAL") \
  ROW(bannerShownDate, "BANNER_SHOWN_DATE") \
  ROW(isBannerPresent, "IS_BANNER_PRESENT") \
  ROW(isSettingsPromptEnabled, "IS_SETTINGS_PROMPT_ENABLED") \
  ROW(hasShownSettingsPrompt, "HAS_SHOWN_SETTINGS_PROMPT") \
  ROW(cdnCachedTimestamp, "CDN_CACHED_TIMESTAMP") \
  ROW(cdnFileLocation, "CDN_FILE_LOCATION") \
  /* The URL requested for the cached configuration, before any fall-back. */ \
  ROW(cdnAddress, "CDN_ADDRESS") \
  /* The entity tag that came with the cached configuration; "Etag" holds the newest tag of any answer. */ \
  ROW(cdnEtag, "CDN_ETAG") \
  ROW(etag, "Etag") \
  ROW(currentCountryCode, "curr_countryCode") \
  ROW(currentLocation, "curr_location") \
  ROW(currentLocationTimestamp, "curr_location_timestamp") \
  /* The time of the last failed location request. */ \
  ROW(locationFailedTimestamp, "curr_location_failed_timestamp") \
  /* True after the store was damaged, until the user answers again. */ \
  ROW(lostEntries, lostEntriesKey)
// clang-format on

namespace quillon::key {

inline constexpr std::string_view suiteName = "quillon-cmp-sdk";

#define QUILLON_CONSTANT(name, text) inline constexpr std::string_view name = text;
QUILLON_STORE_KEYS(QUILLON_CONSTANT)
#undef QUILLON_CONSTANT

// All keys above.
#define QUILLON_ELEMENT(name, text) name,
inline constexpr auto all = std::to_array<std::string_view>({QUILLON_STORE_KEYS(QUILLON_ELEMENT)});
#undef QUILLON_ELEMENT

// Whether a key has the form of a purpose identifier.
[[nodiscard]] constexpr bool isPurpose(std::string_view name) noexcept {
  return name.find_first_not_of("-0123456789") == std::string_view::npos;
}

inline constexpr std::size_t longestPermission = 256;

// Whether a permission must not be stored under this key: an SDK key, a purpose identifier, or longer than any
// permission key.
[[nodiscard]] constexpr bool isReserved(std::string_view name) noexcept {
  return isPurpose(name) || name.size() > longestPermission || std::ranges::find(all, name) != all.end();
}

}  // namespace quillon::key

#undef QUILLON_STORE_KEYS
