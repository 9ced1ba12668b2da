// TC strings of the Transparency & Consent Framework: a core segment, the disclosed vendors, and the publisher's own
// consents.
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

// The number of purposes that a string has room for.
inline constexpr unsigned tcPurposes = 24;

// The longest accepted string of either framework: as long as the vendors with the highest URL limit accept.
inline constexpr std::size_t longestString = std::size_t{128} << 10;

struct TcString {
  Record core{tcCore};
  // Mandatory since 28 February 2026; earlier strings may lack it.
  std::optional<Record> disclosedVendors;
  std::optional<Record> publisherTC;

  bool operator==(const TcString&) const = default;
};

// Errors name the field: "core.VendorConsent: the text ends too early". Thread-safe.
[[nodiscard]] std::expected<TcString, std::string> decodeTcString(std::string_view text);
[[nodiscard]] std::expected<std::string, std::string> encode(const TcString& tc);

}  // namespace quillon::signals
