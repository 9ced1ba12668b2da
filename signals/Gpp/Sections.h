// The Global Privacy Platform sections that are decoded field by field.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "signals/Records/Layout.h"

namespace quillon::signals {

// Whether a section encodes sensitive data as consent (1: none, 2: given) or as opt-out (1: opted out, 2: not).
enum class AskedAs : std::uint8_t { consent, optOut };

// A section of the US national approach or of a state. In JSON both parts are in one object, whose key is the API
// prefix, such as "usca".
struct UsSection {
  std::uint16_t id;
  Layout core;
  Layout subsection;  // without fields if the section has none; optional in a string
  AskedAs sensitiveData = AskedAs::consent;

  [[nodiscard]] constexpr std::string_view prefix() const noexcept { return core.name; }
};

// Sorted by ID.
[[nodiscard]] std::span<const UsSection> usSections() noexcept;
// Null for an unknown ID.
[[nodiscard]] const UsSection* usSection(std::uint16_t id) noexcept;

inline constexpr std::uint16_t tcfEuSection = 2;
inline constexpr std::uint16_t usNationalSection = 7;

// The API prefix of a section, empty if it has none; and the section of a prefix, or 0.
[[nodiscard]] std::string_view sectionPrefix(std::uint16_t id) noexcept;
[[nodiscard]] std::uint16_t sectionOfPrefix(std::string_view prefix) noexcept;

}  // namespace quillon::signals
