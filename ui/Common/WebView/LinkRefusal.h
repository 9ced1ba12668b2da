// Why the web view refuses a URL.
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

// A phrase that continues "it is refused: ".
[[nodiscard]] std::string_view reason(LinkRefusal refusal) noexcept;

}  // namespace quillon
