// The digits of base64url (RFC 4648, section 5), each worth six bits.
#pragma once

#include <string_view>

namespace quillon::signals {

inline constexpr std::string_view base64UrlDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_";

}  // namespace quillon::signals
