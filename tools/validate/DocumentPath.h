// Places in a document, in the notation of decode(): "purposes[3].sdks[0].sdk_id".
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace quillon::tools {

// A text of the document as it may stand in a message: without control characters, and cut when it is long.
[[nodiscard]] std::string shown(std::string_view text);

// As above, in quotation marks.
[[nodiscard]] std::string inQuotes(std::string_view text);

class DocumentPath {
 public:
  // The document itself.
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
