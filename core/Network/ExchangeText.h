// A failed exchange in words.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "platform/HttpSession.h"

namespace quillon {

// Request, response and body for the log. Line breaks inside values are escaped, bodies cut, and the access token is
// masked wherever it stands, in the answer as well. Of the answer's body at most so many bytes are shown.
[[nodiscard]] std::string exchangeText(const HttpRequest& request, const HttpResponse& response,
                                       std::size_t shownBytes = std::size_t{64} << 10);

// A text of the server's with the access token that the request carried masked, wherever it stands.
[[nodiscard]] std::string withoutEcho(std::string text, std::string_view token);

}  // namespace quillon
