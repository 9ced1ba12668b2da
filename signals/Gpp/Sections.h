// The sections of the Global Privacy Platform that are read and written field by field.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "signals/Records/Layout.h"

namespace quillon::signals {

// How a law lets users decide about sensitive data: 1 means no consent, or opted out, and 2 the opposite.
enum class AskedAs : std::uint8_t { consent, optOut };

// The section of the United States or of one of them. Both its parts stand in one object in JSON, whose key is the
// prefix of the pages' interface, "usca".
struct UsSection {
  std::uint16_t id;
  Layout core;
  Layout subsection;  // without fields when there is none; a string may lack it
  AskedAs sensitiveData = AskedAs::consent;

  [[nodiscard]] constexpr std::string_view prefix() const noexcept { return core.name; }
};

// In the order of their IDs.
[[nodiscard]] std::span<const UsSection> usSections() noexcept;
// Null when there is none.
[[nodiscard]] const UsSection* usSection(std::uint16_t id) noexcept;

inline constexpr std::uint16_t tcfEuSection = 2;
inline constexpr std::uint16_t usNationalSection = 7;

// The prefix of a section in the pages' interface, empty for one without; and the section of a prefix, or 0.
[[nodiscard]] std::string_view sectionPrefix(std::uint16_t id) noexcept;
[[nodiscard]] std::uint16_t sectionOfPrefix(std::string_view prefix) noexcept;

}  // namespace quillon::signals
