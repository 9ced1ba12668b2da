// How much a test does.
#pragma once

#include <string_view>

namespace quillon::test {

inline constexpr bool isSanitized = !std::string_view(SANITIZERS).empty();

// Where a sanitizer or an emulator makes each round cost ten times as much, few are enough: the release goes through
// all of them.
inline constexpr bool isSlowed = isSanitized || EMULATED;

}  // namespace quillon::test
