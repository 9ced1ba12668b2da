// Findings in the forms that people and programs read.
#pragma once

#include <boost/json/array.hpp>
#include <ostream>
#include <string>
#include <vector>

#include "tools/validate/Finding.h"

namespace quillon::tools {

struct CheckedFile {
  std::string name;
  bool isValid = false;  // whether the SDK takes it
  std::vector<Finding> findings;
};

// "FILE: ok", and "FILE:LINE:COLUMN: LEVEL: PATH: TEXT [RULE]" for each finding.
// {"level", "rule", "path", "line", "column", "text"} of each.
[[nodiscard]] boost::json::array toJson(const std::vector<Finding>& findings);

void writeText(std::ostream& out, const CheckedFile& file);

// {"files":[{"file":…,"valid":…,"findings":[…]}]}
void writeJson(std::ostream& out, const std::vector<CheckedFile>& files);

// SARIF 2.1.0, which code hosts show beside the lines.
void writeSarif(std::ostream& out, const std::vector<CheckedFile>& files);

}  // namespace quillon::tools
