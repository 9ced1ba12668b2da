// The library's own page for refused addresses, from webview_blocked_page.html.
#pragma once

#include <string_view>

namespace quillon {

extern const std::string_view ownBlockedPage;

}  // namespace quillon
