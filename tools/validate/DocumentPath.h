// Paths in a document, in decode()'s notation: "purposes[3].sdks[0].sdk_id".
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace quillon::tools {

// A document's text for a message: without control characters, truncated if long.
[[nodiscard]] std::string shown(std::string_view text);

// As above, in quotes.
[[nodiscard]] std::string inQuotes(std::string_view text);

class DocumentPath {
 public:
  // The root of the document.
  DocumentPath() = default;

  [[nodiscard]] DocumentPath at(std::string_view key) const {
    return DocumentPath(text_.empty() ? shown(key) : text_ + '.' + shown(key));
  }
  [[nodiscard]] DocumentPath at(std::size_t index) const {
    return DocumentPath(text_ + '[' + std::to_string(index) + ']');
  }
  [[nodiscard]] const std::string& text() const { return text_; }

 private:
  explicit DocumentPath(std::string text) : text_(std::move(text)) {}

  std::string text_;
};

}  // namespace quillon::tools
