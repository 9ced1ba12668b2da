// Formats findings for people and programs.
#pragma once

#include <boost/json/array.hpp>
#include <ostream>
#include <string>
#include <vector>

#include "tools/validate/Finding.h"

namespace quillon::tools {

struct CheckedFile {
  std::string name;
  bool isValid = false;  // accepted by the SDK
  std::vector<Finding> findings;
};

// For each finding {"level", "rule", "path", "line", "column", "text"}.
[[nodiscard]] boost::json::array toJson(const std::vector<Finding>& findings);

// "FILE: ok", or for each finding "FILE:LINE:COLUMN: LEVEL: PATH: TEXT [RULE]".
void writeText(std::ostream& out, const CheckedFile& file);

// {"files":[{"file":…,"valid":…,"findings":[…]}]}
void writeJson(std::ostream& out, const std::vector<CheckedFile>& files);

// SARIF 2.1.0, which code hosting services display beside the lines.
void writeSarif(std::ostream& out, const std::vector<CheckedFile>& files);

}  // namespace quillon::tools
