// Why the web view does not open an address.
#pragma once

#include <string_view>

namespace quillon {

enum class LinkRefusal {
  empty,
  tooLong,
  notUtf8,
  controlCharacter,
  space,
  backslash,
  percent,
  character,
  incomplete,
  scheme,
  userName,
  port,
  noHost,
  encodedHost,
  emptyLabel,
  hostName,
  numericHost,
  internationalName,
  ipLiteral,
  notAllowed,
};

// In words that continue "it is refused: ".
[[nodiscard]] std::string_view reason(LinkRefusal refusal) noexcept;

}  // namespace quillon
