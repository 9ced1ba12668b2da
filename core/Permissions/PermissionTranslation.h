// Translates the values of each permission source to a consent.
#pragma once

#include <optional>
#include <string>

#include "quillon/ConsentStatus.h"
#include "quillon/VantariKey.h"

namespace quillon {

// The consent for a platform value of the source behind a key; `answer` is nullopt when the device has no such source.
[[nodiscard]] ConsentStatus consentFromPlatformValue(VantariKey::Case key, std::optional<int> answer) noexcept;

// The consent for an entry of the application's information dictionary, absent or present.
[[nodiscard]] ConsentStatus consentFromInformation(const std::optional<std::string>& entry) noexcept;

}  // namespace quillon
