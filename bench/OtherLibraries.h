// Decodes the same structures with other JSON libraries. Each is used as its documentation advises for speed, and
// validates UTF-8 and syntax; none detects duplicate keys or limits memory. Errors are exceptions.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "quillon/MainConfiguration.h"

namespace quillon::bench {

/// The readable bytes that simdjson requires after the text.
inline constexpr std::size_t kReadablePadding = 64;

/// Converts values while parsing (On-Demand), with a reused parser.
MainConfiguration decodeWithSimdjson(std::string_view json);
/// Through a DOM.
MainConfiguration decodeWithRapidJson(std::string_view json);
MainConfiguration decodeWithNlohmann(std::string_view json);
std::string encodeWithRapidJson(const MainConfiguration& configuration);

}  // namespace quillon::bench
