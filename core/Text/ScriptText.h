// JSON for a script element of a page.
#pragma once

#include <string>
#include <string_view>

namespace quillon {

// The JSON with every character escaped that could end the script element, or a line in older engines; the result is
// valid JavaScript.
[[nodiscard]] std::string scriptText(std::string_view json);

}  // namespace quillon
