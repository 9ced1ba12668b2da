// Descriptions of configuration keys, shown by editors.
#pragma once

#include <string_view>

namespace quillon::tools {

// Describes a key of the record that is the value of another key, such as "purpose_id" in "purposes"; empty if
// self-explanatory.
[[nodiscard]] std::string_view descriptionOf(std::string_view record, std::string_view key);

}  // namespace quillon::tools
