// Describes a failed exchange for the log.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "platform/HttpSession.h"

namespace quillon {

// Request, response and body for the log. Line breaks in values are escaped, bodies truncated, and the access token is
// masked everywhere. At most `shownBytes` of the response body are shown.
[[nodiscard]] std::string exchangeText(const HttpRequest& request, const HttpResponse& response,
                                       std::size_t shownBytes = std::size_t{64} << 10);

// A server's text with the request's access token masked.
[[nodiscard]] std::string withoutEcho(std::string text, std::string_view token);

}  // namespace quillon
