/// @file
/// What libraries of the advertising trade read in an application.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <variant>

namespace quillon {

/// A whole number or a text, whichever the frameworks specify for the key.
using SignalValue = std::variant<std::int64_t, std::string>;

/// "IABTCF_..." and "IABGPP_..." with their values, all of one decision.
using SignalKeys = std::map<std::string, SignalValue, std::less<>>;

}  // namespace quillon
