// Canonical JSON (RFC 8785): one text for equal data, to be hashed and signed.
#pragma once

#include <boost/json/value.hpp>
#include <string>

namespace quillon::proof {

// Integers beyond 2^53 are written exactly. The standard does not cover them, and rounding them could map two values to
// one text, which would hide a change.
[[nodiscard]] std::string canonicalJson(const boost::json::value& value);
[[nodiscard]] std::string canonicalJson(const boost::json::object& object);

}  // namespace quillon::proof
