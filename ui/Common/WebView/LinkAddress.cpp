#include "ui/Common/WebView/LinkAddress.h"

#include <algorithm>
#include <boost/url/parse.hpp>

#include "core/Text/Ascii.h"
#include "core/Text/Utf8.h"

namespace quillon {
namespace {

constexpr std::string_view decimalDigits = "0123456789";

bool isBeyondAscii(char c) {
  return (static_cast<unsigned char>(c) & 0x80) != 0;
}

bool isControl(char c) {
  return static_cast<unsigned char>(c) < 0x20 || c == 0x7f;
}

// The components of a URL, as written.
struct Pieces {
  boost::urls::scheme scheme = boost::urls::scheme::none;
  bool hasUserName = false;
  bool hasAuthority = false;
  std::string_view host = {};
  std::optional<std::string_view> port = std::nullopt;
  std::string_view rest = {};  // path, query and fragment
};

// nullopt if the grammar rejects it. The grammar is ASCII only, so each non-ASCII byte is parsed as "x", which is valid
// everywhere and preserves offsets.
std::optional<Pieces> piecesOf(std::string_view address) {
  std::string ascii(address);
  std::ranges::replace_if(ascii, isBeyondAscii, 'x');
  const auto url = boost::urls::parse_uri_reference(ascii);
  if (!url) return std::nullopt;
  Pieces pieces{.scheme = url->scheme_id(), .hasUserName = url->has_userinfo(), .hasAuthority = url->has_authority()};
  if (!pieces.hasAuthority) return pieces;

  const auto host = url->encoded_host();
  const auto begin = static_cast<std::size_t>(host.data() - ascii.data());
  pieces.host = address.substr(begin, host.size());
  pieces.rest = address.substr(begin + host.size());
  if (url->has_port()) {
    pieces.port = pieces.rest.substr(1, url->port().size());
    pieces.rest.remove_prefix(1 + pieces.port->size());
  }
  // The parser accepts letters after the bracket of an IPv6 address.
  if (!pieces.rest.empty() && !std::string_view("/?#").contains(pieces.rest.front())) return std::nullopt;
  return pieces;
}

bool isSoundPort(std::string_view port) {
  constexpr std::size_t mostDigits = 5;
  if (port.empty() || port.size() > mostDigits || port.front() == '0') return false;
  return port.find_first_not_of(decimalDigits) == std::string_view::npos && std::stoi(std::string(port)) <= 65535;
}

// The library's encoder does not accept text that is partly encoded already.
std::string percentEncoded(std::string_view text, bool (*isEncoded)(char)) {
  std::string result;
  for (const char c : text) {
    if (isEncoded(c)) {
      result += '%';
      appendHex(result, c, upperHexDigits);
    } else {
      result += c;
    }
  }
  return result;
}

// Brackets, braces and bars in path, query and fragment are unambiguous, though the grammar requires encoding. In a
// host they are significant or invalid.
std::string withEncodedBrackets(std::string_view address) {
  constexpr std::string_view authority = "://";
  const std::size_t begin = std::min(address.find(authority), address.size() - 1) + 1;
  const std::size_t rest = std::min(address.find_first_of("/?#", begin + authority.size() - 1), address.size());
  return std::string(address.substr(0, rest)) +
         percentEncoded(address.substr(rest), [](char c) { return std::string_view("[]{}|").contains(c); });
}

// Why the grammar rejects the URL.
LinkRefusal refusalOf(std::string_view address) {
  for (std::size_t at = 0; (at = address.find('%', at)) != std::string_view::npos; ++at) {
    const auto digits = address.substr(at + 1, 2);
    if (digits.size() < 2 || hexValue(digits[0]) < 0 || hexValue(digits[1]) < 0) return LinkRefusal::percent;
  }
  if (address.find_first_of("\"<>^`{}|") != std::string_view::npos) return LinkRefusal::character;
  return LinkRefusal::incomplete;
}

// Spaces at the ends are ignored; line breaks and tabs are not.
std::string_view withoutSpaces(std::string_view text) {
  const auto first = std::min(text.find_first_not_of(' '), text.size());
  return text.substr(first, text.find_last_not_of(' ') + 1 - first);
}

}  // namespace

std::expected<LinkAddress, LinkRefusal> parseLink(std::string_view address) {
  const auto link = withoutSpaces(address);
  if (link.empty()) return std::unexpected(LinkRefusal::empty);
  if (link.size() > longestLink) return std::unexpected(LinkRefusal::tooLong);
  if (!isUtf8(link)) return std::unexpected(LinkRefusal::notUtf8);
  if (std::ranges::any_of(link, isControl)) return std::unexpected(LinkRefusal::controlCharacter);
  if (link.contains(' ')) return std::unexpected(LinkRefusal::space);
  if (link.contains('\\')) return std::unexpected(LinkRefusal::backslash);

  const std::string encoded = withEncodedBrackets(link);
  const auto pieces = piecesOf(encoded);
  if (!pieces) return std::unexpected(refusalOf(encoded));
  if (pieces->scheme == boost::urls::scheme::none) return std::unexpected(LinkRefusal::incomplete);
  const bool isSecure = pieces->scheme == boost::urls::scheme::https;
  if (!isSecure && pieces->scheme != boost::urls::scheme::http) return std::unexpected(LinkRefusal::scheme);
  if (!pieces->hasAuthority) return std::unexpected(LinkRefusal::noHost);
  if (pieces->hasUserName) return std::unexpected(LinkRefusal::userName);
  if (pieces->port && !isSoundPort(*pieces->port)) return std::unexpected(LinkRefusal::port);
  auto host = linkHost(pieces->host);
  if (!host) return std::unexpected(host.error());

  std::string text = (isSecure ? "https://" : "http://") + host->text;
  if (pieces->port) text.append(":").append(*pieces->port);
  if (!pieces->rest.starts_with('/')) text += '/';
  text += percentEncoded(pieces->rest, isBeyondAscii);
  if (text.size() > longestLink) return std::unexpected(LinkRefusal::tooLong);
  return LinkAddress{.text = std::move(text), .host = *std::move(host)};
}

std::optional<LinkHost> hostIn(std::string_view reference) {
  if (reference.size() > longestLink) return std::nullopt;
  const auto pieces = piecesOf(reference);
  if (!pieces) return std::nullopt;
  auto host = linkHost(pieces->host);
  return host ? std::optional(*std::move(host)) : std::nullopt;
}

}  // namespace quillon
