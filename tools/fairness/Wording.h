// Detects manipulative wording.
#pragma once

#include <string_view>

namespace quillon::tools {

// Each returns the phrase found, in English, German, French or Spanish, ignoring case; empty if there is none.

// Evasive labels of a refuse button, which postpone the answer or lead to another layer.
[[nodiscard]] std::string_view evasionIn(std::string_view text);
// Claims that something other than an answer is consent.
[[nodiscard]] std::string_view silentConsentIn(std::string_view text);
// Praise, guilt, fear, urgency.
[[nodiscard]] std::string_view pressureIn(std::string_view text);

}  // namespace quillon::tools
