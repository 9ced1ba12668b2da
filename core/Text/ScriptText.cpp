#include "core/Text/ScriptText.h"

#include <algorithm>
#include <array>
#include <utility>

namespace quillon {

std::string scriptText(std::string_view json) {
  constexpr std::array<std::pair<std::string_view, std::string_view>, 6> escapes{{{"<", "\\u003c"},
                                                                                  {">", "\\u003e"},
                                                                                  {"&", "\\u0026"},
                                                                                  {"\x7f", "\\u007f"},
                                                                                  {"\u2028", "\\u2028"},
                                                                                  {"\u2029", "\\u2029"}}};
  std::string result;
  for (std::string_view rest = json; !rest.empty();) {
    const auto escape = std::ranges::find_if(escapes, [rest](const auto& row) { return rest.starts_with(row.first); });
    result += escape == escapes.end() ? rest.substr(0, 1) : escape->second;
    rest.remove_prefix(escape == escapes.end() ? 1 : escape->first.size());
  }
  return result;
}

}  // namespace quillon
