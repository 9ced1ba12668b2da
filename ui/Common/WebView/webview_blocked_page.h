// The built-in page for refused addresses, from webview_blocked_page.html. Placeholders such as "{{page_blocked}}" and
// "{{language}}" are replaced by labels and the language.
#pragma once

#include <string_view>

namespace quillon {

extern const std::string_view ownBlockedPage;

}  // namespace quillon
