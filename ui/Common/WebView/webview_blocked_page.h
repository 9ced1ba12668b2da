// The library's own page for refused addresses, from webview_blocked_page.html. Labels take the places of their keys:
// "{{page_blocked}}"; and the language that of "{{language}}".
#pragma once

#include <string_view>

namespace quillon {

extern const std::string_view ownBlockedPage;

}  // namespace quillon
