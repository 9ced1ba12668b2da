// What the keys of a configuration hold, for editors that show it.
#pragma once

#include <string_view>

namespace quillon::tools {

// Of a key in the record that another key holds, such as "purpose_id" in "purposes"; empty when the key says it itself.
[[nodiscard]] std::string_view descriptionOf(std::string_view record, std::string_view key);

}  // namespace quillon::tools
