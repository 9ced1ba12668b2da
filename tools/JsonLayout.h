// Formats JSON over several lines.
#pragma once

#include <boost/json/value.hpp>
#include <string>

namespace quillon::tools {

struct JsonLayout {
  std::string level = "  ";  // of one level of indentation
  std::string newline = "\n";
};

// One line per member and element; all lines but the first begin with `indentation`.
[[nodiscard]] std::string laidOut(const boost::json::value& value, const JsonLayout& layout = {},
                                  const std::string& indentation = {});

}  // namespace quillon::tools
