#include "ui/Common/WebView/LinkRefusal.h"

namespace quillon {

std::string_view reason(LinkRefusal refusal) noexcept {
  switch (refusal) {
    case LinkRefusal::empty:
      return "it is empty";
    case LinkRefusal::tooLong:
      return "it is longer than 8 KiB";
    case LinkRefusal::notUtf8:
      return "it is not valid UTF-8";
    case LinkRefusal::controlCharacter:
      return "it contains a control character or a line break";
    case LinkRefusal::space:
      return "it contains a space";
    case LinkRefusal::backslash:
      return "it contains a backslash";
    case LinkRefusal::percent:
      return "it contains a percent sign that no two hexadecimal digits follow";
    case LinkRefusal::character:
      return "it contains a character that an address must write percent-encoded";
    case LinkRefusal::incomplete:
      return "it is not a complete address";
    case LinkRefusal::scheme:
      return "it is neither http nor https";
    case LinkRefusal::userName:
      return "it carries a user name";
    case LinkRefusal::port:
      return "its port is not a plain number from 1 to 65535";
    case LinkRefusal::noHost:
      return "it names no host";
    case LinkRefusal::encodedHost:
      return "its host is percent-encoded";
    case LinkRefusal::emptyLabel:
      return "its host has an empty part or ends in a dot";
    case LinkRefusal::hostName:
      return "its host is not made of letters, digits, hyphens and underscores, or is too long";
    case LinkRefusal::numericHost:
      return "its host is a number that is not a plain IPv4 address";
    case LinkRefusal::internationalName:
      return "its host is not a sound international name";
    case LinkRefusal::ipLiteral:
      return "its host in brackets is not a plain IPv6 address";
    case LinkRefusal::notAllowed:
      return "its host is not allowed";
  }
  return {};
}

}  // namespace quillon
