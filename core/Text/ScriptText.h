// JSON inside a script element of a page.
#pragma once

#include <string>
#include <string_view>

namespace quillon {

// The same JSON, with everything escaped that could end the script element, or a line in older engines. A text of JSON
// is one of JavaScript then.
[[nodiscard]] std::string scriptText(std::string_view json);

}  // namespace quillon
