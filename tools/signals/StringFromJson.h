// JSON as `signals decode` prints it, back to a string of the trade.
#pragma once

#include <boost/json/value.hpp>
#include <expected>
#include <string>

namespace quillon::tools {

// Refuses a field that the tables do not have, one that is missing, and a value that a field cannot have; an error
// names the place: "core.CmpId: expected an integer". What follows from the rest may be left out: the header, and
// fields with only one value.
[[nodiscard]] std::expected<std::string, std::string> stringFromJson(const boost::json::value& json);

}  // namespace quillon::tools
