// A failed exchange in words.
#pragma once

#include <string>

#include "platform/HttpSession.h"

namespace quillon {

// Request, response and body for the log. Line breaks inside values are escaped, bodies cut at 64 KiB, and the access
// token is masked wherever it stands.
[[nodiscard]] std::string exchangeText(const HttpRequest& request, const HttpResponse& response);

}  // namespace quillon
