// Global Privacy Platform strings: a header that lists the sections, and the sections.
#pragma once

#include <cstdint>
#include <expected>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "signals/Gpp/Sections.h"
#include "signals/Tcf/TcString.h"

namespace quillon::signals {

extern const Layout gppHeader;

// A section of the US national approach or of a state.
struct UsString {
  explicit UsString(const UsSection& section) : core(section.core) {}

  Record core;
  std::optional<Record> subsection;

  bool operator==(const UsString&) const = default;
};

// A section of an unsupported type is kept as text.
using GppSection = std::variant<std::string, TcString, UsString>;

struct GppString {
  std::map<std::uint16_t, GppSection> sections;  // by ID

  bool operator==(const GppString&) const = default;
};

// The header for these sections.
[[nodiscard]] Record headerOf(const GppString& gpp);

// Errors name the field: "usca.SaleOptOut: the text ends too early". Thread-safe.
[[nodiscard]] std::expected<GppString, std::string> decodeGppString(std::string_view text);
[[nodiscard]] std::expected<std::string, std::string> encode(const GppString& gpp);
// Encodes a single section.
[[nodiscard]] std::expected<std::string, std::string> encode(const GppSection& section);

}  // namespace quillon::signals
