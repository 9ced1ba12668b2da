// The same records through other JSON libraries. Each is used as its documentation advises for speed and checks UTF-8
// and the syntax of what it reads; none of them finds duplicate keys or bounds the memory. Errors are exceptions.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "quillon/MainConfiguration.h"

namespace quillon::bench {

/// What must be readable after the text that simdjson decodes.
inline constexpr std::size_t kReadablePadding = 64;

/// Into the records while the text is read (On-Demand), with a parser that is kept.
MainConfiguration decodeWithSimdjson(std::string_view json);
/// By way of a tree.
MainConfiguration decodeWithRapidJson(std::string_view json);
MainConfiguration decodeWithNlohmann(std::string_view json);
std::string encodeWithRapidJson(const MainConfiguration& configuration);

}  // namespace quillon::bench
