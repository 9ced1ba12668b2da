/// @file
/// The keys that advertising libraries read in an application.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <variant>

namespace quillon {

/// An integer or a text, as the frameworks specify per key.
using SignalValue = std::variant<std::int64_t, std::string>;

/// "IABTCF_..." and "IABGPP_..." keys with their values, computed from one SignalState.
using SignalKeys = std::map<std::string, SignalValue, std::less<>>;

}  // namespace quillon
