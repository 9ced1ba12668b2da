#include "ui/Common/WebView/LinkHost.h"

#include <idn2.h>

#include <algorithm>
#include <array>
#include <boost/url/ipv4_address.hpp>
#include <boost/url/ipv6_address.hpp>
#include <charconv>
#include <memory>
#include <optional>

#include "core/Text/Ascii.h"
#include "core/Text/Utf8.h"

namespace quillon {
namespace {

constexpr std::size_t longestName = 253;
constexpr std::size_t longestLabel = 63;
constexpr std::size_t longestLabelText = longestLabel * 4;  // in UTF-8
constexpr std::string_view encodedPrefix = "xn--";

using HostLabel = std::expected<std::string, LinkRefusal>;

bool isAscii(std::string_view text) {
  return std::ranges::none_of(text, [](char c) { return (static_cast<unsigned char>(c) & 0x80) != 0; });
}

// Lower-cases Latin-1, Latin Extended-A, Greek and Cyrillic capitals; returns other characters unchanged.
unsigned small(unsigned c) {
  const auto within = [c](unsigned first, unsigned last) { return c >= first && c <= last; };
  if ((within(0xC0, 0xDE) && c != 0xD7) || (within(0x391, 0x3A9) && c != 0x3A2) || within(0x410, 0x42F)) {
    return c + 0x20;
  }
  if (within(0x400, 0x40F)) return c + 0x50;
  if ((within(0x100, 0x137) && c != 0x130) || within(0x14A, 0x177)) return c | 1U;
  if (within(0x139, 0x148) || within(0x179, 0x17E)) return c + (c & 1U);
  return c == 0x178 ? 0xFF : c;
}

// These capitals and their lower-case letters are all two bytes long.
std::string lowerCased(std::string_view text) {
  std::string result(text);
  for (std::size_t i = 0, length = 0; i < result.size(); i += length) {
    length = std::max<std::size_t>(utf8Length(text.substr(i)), 1);
    if (length == 1) result[i] = lowerCase(result[i]);
    if (length != 2) continue;
    const unsigned c = small((result[i] & 0x1FU) << 6 | (result[i + 1] & 0x3FU));
    result[i] = static_cast<char>(0xC0U | c >> 6);
    result[i + 1] = static_cast<char>(0x80U | (c & 0x3FU));
  }
  return result;
}

struct Idn2Free {
  void operator()(void* text) const { idn2_free(text); }
};

// Encodes a label with IDNA 2008, without mapping.
HostLabel encoded(const std::string& label) {
  if (label.front() == '-' || label.back() == '-') return std::unexpected(LinkRefusal::internationalName);
  std::uint8_t* result = nullptr;
  const int code = idn2_lookup_u8(reinterpret_cast<const std::uint8_t*>(label.c_str()), &result,
                                  IDN2_NO_TR46 | IDN2_USE_STD3_ASCII_RULES);
  const std::unique_ptr<std::uint8_t, Idn2Free> owner(result);
  if (code != IDN2_OK) return std::unexpected(LinkRefusal::internationalName);
  std::string text = reinterpret_cast<const char*>(result);
  if (!text.starts_with(encodedPrefix)) return std::unexpected(LinkRefusal::internationalName);
  return text;
}

std::optional<std::string> decoded(const std::string& label) {
  char* result = nullptr;
  const int code = idn2_to_unicode_8z8z(label.c_str(), &result, 0);
  const std::unique_ptr<char, Idn2Free> owner(result);
  if (code != IDN2_OK || *result == '\0') return std::nullopt;
  return result;
}

HostLabel canonicalLabel(std::string_view raw) {
  if (raw.empty()) return std::unexpected(LinkRefusal::emptyLabel);
  if (raw.size() > longestLabelText) return std::unexpected(LinkRefusal::hostName);
  std::string label = lowerCased(raw);
  if (!isAscii(label)) return encoded(label);

  const auto isPlain = [](char c) { return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-' || c == '_'; };
  if (label.size() > longestLabel || label.front() == '-' || label.back() == '-' ||
      !std::ranges::all_of(label, isPlain)) {
    return std::unexpected(LinkRefusal::hostName);
  }
  if (label.starts_with(encodedPrefix)) {
    const auto text = decoded(label);
    if (!text || encoded(*text) != label) return std::unexpected(LinkRefusal::internationalName);
  }
  return label;
}

// Browsers parse a name whose last label is like this as an IPv4 address: octal, hexadecimal, or with parts omitted.
bool isNumeric(std::string_view label) {
  constexpr std::string_view digits = "0123456789";
  if (label.find_first_not_of(digits) == std::string_view::npos) return true;
  return label.starts_with("0x") && label.find_first_not_of("0123456789abcdef", 2) == std::string_view::npos;
}

// RFC 5952: compresses the first of the longest runs of at least two zero groups.
std::string canonicalText(const boost::urls::ipv6_address& address) {
  if (address.is_v4_mapped()) return address.to_string();
  constexpr std::size_t groups = 8;
  const auto bytes = address.to_bytes();
  const auto isZero = [&](std::size_t i) { return bytes[2 * i] == 0 && bytes[2 * i + 1] == 0; };
  std::size_t begin = 0;
  std::size_t longest = 1;
  for (std::size_t i = 0; i < groups; ++i) {
    std::size_t length = 0;
    while (i + length < groups && isZero(i + length)) ++length;
    if (length <= longest) continue;
    begin = i;
    longest = length;
  }
  std::string text;
  for (std::size_t i = 0; i < groups; ++i) {
    if (longest > 1 && i == begin) {
      text += "::";
      i += longest - 1;
      continue;
    }
    if (!text.empty() && !text.ends_with(':')) text += ':';
    std::array<char, 4> digits{};
    const auto end = std::to_chars(digits.begin(), digits.end(), bytes[2 * i] << 8 | bytes[2 * i + 1], 16).ptr;
    text.append(digits.begin(), end);
  }
  return text;
}

}  // namespace

std::expected<LinkHost, LinkRefusal> linkHost(std::string_view host) {
  if (host.empty()) return std::unexpected(LinkRefusal::noHost);
  if (host.contains('%')) return std::unexpected(LinkRefusal::encodedHost);
  if (host.front() == '[') {
    const auto address = boost::urls::parse_ipv6_address(host.substr(1, std::max<std::size_t>(host.size(), 2) - 2));
    if (!address || host.back() != ']') return std::unexpected(LinkRefusal::ipLiteral);
    return LinkHost{.text = '[' + canonicalText(*address) + ']', .isAddress = true};
  }

  std::string name;
  std::size_t lastLabel = 0;
  for (std::size_t begin = 0; begin <= host.size();) {
    const std::size_t end = std::min(host.find('.', begin), host.size());
    const auto label = canonicalLabel(host.substr(begin, end - begin));
    if (!label) return std::unexpected(label.error());
    if (begin > 0) name += '.';
    lastLabel = name.size();
    name += *label;
    if (name.size() > longestName) return std::unexpected(LinkRefusal::hostName);
    begin = end + 1;
  }
  if (!isNumeric(std::string_view(name).substr(lastLabel))) return LinkHost{.text = std::move(name)};
  if (!boost::urls::parse_ipv4_address(name)) return std::unexpected(LinkRefusal::numericHost);
  return LinkHost{.text = std::move(name), .isAddress = true};
}

}  // namespace quillon
