// TC strings of the Transparency & Consent Framework: a core segment, the vendors that were disclosed, and the
// publisher's own consents.
#pragma once

#include <cstddef>
#include <expected>
#include <optional>
#include <string>
#include <string_view>

#include "signals/Records/Record.h"

namespace quillon::signals {

extern const Layout tcCore;
extern const Layout tcDisclosedVendors;
extern const Layout tcPublisher;

// Purposes that a set of them has room for.
inline constexpr unsigned tcPurposes = 24;

// The longest string of either framework that is read: what the vendors with the longest addresses accept.
inline constexpr std::size_t longestString = std::size_t{128} << 10;

struct TcString {
  Record core{tcCore};
  // Every string since 28 February 2026 has it; earlier ones may lack it.
  std::optional<Record> disclosedVendors;
  std::optional<Record> publisherTC;

  bool operator==(const TcString&) const = default;
};

// An error names the place: "core.VendorConsent: the text ends too early". Thread-safe.
[[nodiscard]] std::expected<TcString, std::string> decodeTcString(std::string_view text);
[[nodiscard]] std::expected<std::string, std::string> encode(const TcString& tc);

}  // namespace quillon::signals
