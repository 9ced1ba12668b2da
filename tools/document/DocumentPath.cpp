#include "tools/document/DocumentPath.h"

#include "core/Text/LogText.h"

namespace quillon::tools {

std::string inQuotes(std::string_view text) {
  return '"' + excerptForLog(text) + '"';
}

std::string DocumentPath::text() const {
  std::string text;
  for (const Step& step : steps_) {
    if (const auto* index = std::get_if<std::size_t>(&step)) {
      text += '[' + std::to_string(*index) + ']';
    } else {
      text += (text.empty() ? "" : ".") + excerptForLog(std::get<std::string>(step));
    }
  }
  return text.empty() ? "document" : text;
}

DocumentPath DocumentPath::with(Step step) const {
  DocumentPath path;
  path.steps_.reserve(steps_.size() + 1);
  path.steps_ = steps_;
  path.steps_.push_back(std::move(step));
  return path;
}

}  // namespace quillon::tools
