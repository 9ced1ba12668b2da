// JSON in lines, as people read and write it.
#pragma once

#include <boost/json/value.hpp>
#include <string>

namespace quillon::tools {

struct JsonLayout {
  std::string level = "  ";  // the indentation of one
  std::string newline = "\n";
};

// Each member and element has a line of its own; the lines after the first begin with the indentation.
[[nodiscard]] std::string laidOut(const boost::json::value& value, const JsonLayout& layout = {},
                                  const std::string& indentation = {});

}  // namespace quillon::tools
