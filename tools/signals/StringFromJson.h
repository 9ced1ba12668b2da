// Encodes the JSON printed by `signals decode` as a TC or GPP string.
#pragma once

#include <boost/json/value.hpp>
#include <expected>
#include <string>

namespace quillon::tools {

// Rejects unknown and missing fields and invalid values, with an error such as "core.CmpId: expected an integer".
// Derivable parts may be omitted: the header, and fields with a single possible value.
[[nodiscard]] std::expected<std::string, std::string> stringFromJson(const boost::json::value& json);

}  // namespace quillon::tools
