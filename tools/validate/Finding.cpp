#include "tools/validate/Finding.h"

#include <algorithm>
#include <utility>

namespace quillon::tools {

std::string_view nameOf(Level level) {
  constexpr std::string_view names[] = {"note", "warning", "error"};
  return names[static_cast<std::size_t>(level)];
}

void Findings::add(Finding finding) {
  hasErrors_ = hasErrors_ || finding.level == Level::error;
  if (findings_.size() == most) {
    ++leftOut_;
    if (finding.level != Level::error) return;
    // Errors replace lesser findings, so that many of those cannot hide an error.
    const auto least = std::ranges::min_element(findings_, {}, [](const auto& entry) { return entry.second.level; });
    if (least->second.level == Level::error) return;
    findings_.erase(least);
  }
  findings_.emplace(finding.offset, std::move(finding));
}

std::vector<Finding> Findings::located(std::string_view document) && {
  std::vector<Finding> located;
  std::size_t at = 0;
  std::size_t line = 1;
  std::size_t column = 1;
  for (auto& [offset, finding] : findings_) {
    for (; at < std::min(offset, document.size()); ++at) {
      if (document[at] == '\n') {
        ++line;
        column = 1;
      } else if ((static_cast<unsigned char>(document[at]) & 0xC0) != 0x80) {
        ++column;  // not a UTF-8 continuation byte
      }
    }
    finding.line = line;
    finding.column = column;
    located.push_back(std::move(finding));
  }
  if (leftOut_ > 0) {
    located.push_back({.level = Level::note,
                       .rule = "findings",
                       .path = "document",
                       .text = "and " + std::to_string(leftOut_) + " more findings"});
  }
  return located;
}

}  // namespace quillon::tools
