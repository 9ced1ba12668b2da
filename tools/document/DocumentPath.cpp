#include "tools/document/DocumentPath.h"

namespace quillon::tools {

std::string shown(std::string_view text) {
  constexpr std::size_t longest = 64;
  constexpr std::string_view digits = "0123456789abcdef";
  std::string_view kept = text.substr(0, longest);
  if (kept.size() < text.size()) {
    // Cuts at a character boundary.
    while (!kept.empty() && (static_cast<unsigned char>(text[kept.size()]) & 0xC0) == 0x80) kept.remove_suffix(1);
  }
  std::string result;
  for (const char c : kept) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte >= 0x20 && byte != 0x7F) {
      result += c;
    } else {
      result += {'\\', 'x', digits[byte >> 4], digits[byte & 0xF]};
    }
  }
  if (kept.size() < text.size()) result += "...";
  return result;
}

std::string inQuotes(std::string_view text) {
  return '"' + shown(text) + '"';
}

std::string DocumentPath::text() const {
  std::string text;
  for (const Step& step : steps_) {
    if (const auto* index = std::get_if<std::size_t>(&step)) {
      text += '[' + std::to_string(*index) + ']';
    } else {
      text += (text.empty() ? "" : ".") + shown(std::get<std::string>(step));
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
