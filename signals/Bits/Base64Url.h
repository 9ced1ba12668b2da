// The base64url alphabet (RFC 4648, section 5); each character encodes six bits.
#pragma once

#include <string_view>

namespace quillon::signals {

inline constexpr std::string_view base64UrlDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_";

}  // namespace quillon::signals
