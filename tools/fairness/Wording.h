// Words on the screens that lead instead of asking.
#pragma once

#include <string_view>

namespace quillon::tools {

// The phrase that was found, in English, German, French or Spanish; empty for none. Case does not matter.

// A button that refuses must say so; these put off, or lead to another layer.
[[nodiscard]] std::string_view evasionIn(std::string_view text);
// Something else than an answer is said to be one.
[[nodiscard]] std::string_view silentConsentIn(std::string_view text);
// Praise, guilt, fear and haste.
[[nodiscard]] std::string_view pressureIn(std::string_view text);

}  // namespace quillon::tools
