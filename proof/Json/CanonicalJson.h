// JSON in the one form that everybody makes of the same data (RFC 8785), to be hashed and signed.
#pragma once

#include <boost/json/value.hpp>
#include <string>

namespace quillon::proof {

// Whole numbers beyond 2^53 are written digit by digit: the standard leaves them out, and rounding two of them to one
// would hide a change.
[[nodiscard]] std::string canonicalJson(const boost::json::value& value);
[[nodiscard]] std::string canonicalJson(const boost::json::object& object);

}  // namespace quillon::proof
