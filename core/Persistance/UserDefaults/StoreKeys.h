// The names under which values are stored, apart from purpose identifiers and permission keys.
#pragma once

#include <algorithm>
#include <array>
#include <string_view>

#include "platform/KeyValueSuite.h"

namespace quillon::key {

inline constexpr std::string_view suiteName = "quillon-cmp-sdk";

inline constexpr std::string_view arePurposesChanged = "ARE_PURPOSES_CHANGED";
inline constexpr std::string_view purposesChangeTimestamp = "PURPOSES_CHANGE_TIMESTAMP";
inline constexpr std::string_view arePermissionsChanged = "ARE_PERMISSIONS_CHANGED";
inline constexpr std::string_view permissionsChangeTimestamp = "PERMISSIONS_CHANGE_TIMESTAMP";
inline constexpr std::string_view consentGivenType = "CONSENT_GIVEN_TYPE";
inline constexpr std::string_view currentComplianceType = "CURRENT_COMPLIANCE_TYPE";
inline constexpr std::string_view pendingPurposesList = "PENDING_PURPOSES_LIST";
inline constexpr std::string_view pendingPermissionsList = "PENDING_PERMISSIONS_LIST";
inline constexpr std::string_view uploadConsentRequestPending = "UPLOAD_CONSENT_REQUEST_PENDING";
inline constexpr std::string_view subjectId = "SUBJECT_ID";
inline constexpr std::string_view xAuthToken = "X_AUTH_TOKEN";
inline constexpr std::string_view configurationVersion = "SDK_VERSION";
inline constexpr std::string_view isATTEnabled = "IS_ATT_ENABLED";
inline constexpr std::string_view languageCode = "LANGUAGECODE";
inline constexpr std::string_view lastModeUsed = "LAST_MODE_USED";
inline constexpr std::string_view bannerInterval = "BANNER_INTERVAL";
inline constexpr std::string_view bannerShownDate = "BANNER_SHOWN_DATE";
inline constexpr std::string_view isBannerPresent = "IS_BANNER_PRESENT";
inline constexpr std::string_view isSettingsPromptEnabled = "IS_SETTINGS_PROMPT_ENABLED";
inline constexpr std::string_view hasShownSettingsPrompt = "HAS_SHOWN_SETTINGS_PROMPT";
inline constexpr std::string_view cdnCachedTimestamp = "CDN_CACHED_TIMESTAMP";
inline constexpr std::string_view cdnFileLocation = "CDN_FILE_LOCATION";
// The entity tag that came with the cached configuration; "Etag" holds the newest tag of any answer.
inline constexpr std::string_view cdnEtag = "CDN_ETAG";
inline constexpr std::string_view etag = "Etag";
inline constexpr std::string_view currentCountryCode = "curr_countryCode";
inline constexpr std::string_view currentLocation = "curr_location";
inline constexpr std::string_view currentLocationTimestamp = "curr_location_timestamp";
// When the location was asked for in vain.
inline constexpr std::string_view locationFailedTimestamp = "curr_location_failed_timestamp";
// True after the store was damaged, until the user has answered anew.
inline constexpr std::string_view lostEntries = lostEntriesKey;

// Every name above that is the SDK's own.
inline constexpr std::array all{arePurposesChanged,
                                purposesChangeTimestamp,
                                arePermissionsChanged,
                                permissionsChangeTimestamp,
                                consentGivenType,
                                currentComplianceType,
                                pendingPurposesList,
                                pendingPermissionsList,
                                uploadConsentRequestPending,
                                subjectId,
                                xAuthToken,
                                configurationVersion,
                                isATTEnabled,
                                languageCode,
                                lastModeUsed,
                                bannerInterval,
                                bannerShownDate,
                                isBannerPresent,
                                isSettingsPromptEnabled,
                                hasShownSettingsPrompt,
                                cdnCachedTimestamp,
                                cdnFileLocation,
                                cdnEtag,
                                etag,
                                currentCountryCode,
                                currentLocation,
                                currentLocationTimestamp,
                                locationFailedTimestamp,
                                lostEntries};

// Whether a name reads as the identifier of a purpose.
[[nodiscard]] constexpr bool isPurpose(std::string_view name) noexcept {
  return name.find_first_not_of("-0123456789") == std::string_view::npos;
}

inline constexpr std::size_t longestPermission = 256;

// Whether a configured permission may not be stored under this name, because it is one of ours, reads as a purpose or
// is longer than any key of a permission.
[[nodiscard]] constexpr bool isReserved(std::string_view name) noexcept {
  return isPurpose(name) || name.size() > longestPermission || std::ranges::find(all, name) != all.end();
}

}  // namespace quillon::key

namespace quillon::givenType {

inline constexpr std::string_view explicitly = "CONSENT_EXPLICIT";
inline constexpr std::string_view implicitly = "CONSENT_IMPLICIT";
inline constexpr std::string_view noAction = "CONSENT_NO_ACTION";

}  // namespace quillon::givenType
