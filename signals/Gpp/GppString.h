// Strings of the Global Privacy Platform: a header that lists sections, and the sections.
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

// The choices under the law of the United States or of one of them.
struct UsString {
  explicit UsString(const UsSection& section) : core(section.core) {}

  Record core;
  std::optional<Record> subsection;

  bool operator==(const UsString&) const = default;
};

// A section that nobody here can read is kept as its text.
using GppSection = std::variant<std::string, TcString, UsString>;

struct GppString {
  std::map<std::uint16_t, GppSection> sections;  // by their IDs

  bool operator==(const GppString&) const = default;
};

// The header of a string with these sections.
[[nodiscard]] Record headerOf(const GppString& gpp);

// An error names the place: "usca.SaleOptOut: the text ends too early". Thread-safe.
[[nodiscard]] std::expected<GppString, std::string> decodeGppString(std::string_view text);
[[nodiscard]] std::expected<std::string, std::string> encode(const GppString& gpp);
// The text of one section.
[[nodiscard]] std::expected<std::string, std::string> encode(const GppSection& section);

}  // namespace quillon::signals
