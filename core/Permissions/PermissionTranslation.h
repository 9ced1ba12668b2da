// How the numbers and texts of each permission source become a consent.
#pragma once

#include <optional>
#include <string>

#include "quillon/ConsentStatus.h"
#include "quillon/VantariKey.h"

namespace quillon {

// The meaning of a platform value of the source behind a key; nothing when the device has no such source.
[[nodiscard]] ConsentStatus consentFromPlatformValue(VantariKey::Case key, std::optional<int> answer) noexcept;

// The meaning of an entry of the application's information dictionary, absent or present.
[[nodiscard]] ConsentStatus consentFromInformation(const std::optional<std::string>& entry) noexcept;

}  // namespace quillon
