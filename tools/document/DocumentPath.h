// Paths in a document, in decode()'s notation: "purposes[3].sdks[0].sdk_id".
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace quillon::tools {

// A document's text for a message: an excerpt in quotes.
[[nodiscard]] std::string inQuotes(std::string_view text);

class DocumentPath {
 public:
  using Step = std::variant<std::string, std::size_t>;  // a key or an index

  // The root of the document.
  DocumentPath() = default;
  explicit DocumentPath(std::vector<Step> steps) : steps_(std::move(steps)) {}

  [[nodiscard]] DocumentPath at(std::string_view key) const { return with(std::string(key)); }
  [[nodiscard]] DocumentPath at(std::size_t index) const { return with(index); }

  [[nodiscard]] const std::vector<Step>& steps() const { return steps_; }
  // For messages: excerpts of keys; "document" for the root.
  [[nodiscard]] std::string text() const;

 private:
  [[nodiscard]] DocumentPath with(Step step) const;

  std::vector<Step> steps_;
};

}  // namespace quillon::tools
