// base64url without padding (RFC 7515, appendix C).
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quillon::proof {

[[nodiscard]] std::string base64Url(std::string_view bytes);
// nullopt for any text that base64Url() would not produce.
[[nodiscard]] std::optional<std::string> fromBase64Url(std::string_view text);

}  // namespace quillon::proof
