// Parses HTML within bounds of time, memory and stack.
#pragma once

#include <gumbo.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <string_view>

namespace quillon {

class HtmlTree {
 public:
  // nullopt if the text exceeds a limit: largestHtml, 4096 tags and attributes, or the memory for its tree.
  [[nodiscard]] static std::optional<HtmlTree> parse(std::string_view html);

  // The <html> element. The tree may be as deep as it has tags, so do not recurse. Pointers into the source, such as
  // original_text, are dangling.
  const GumboNode& root() const { return *root_; }

 private:
  HtmlTree(std::unique_ptr<std::byte[]> memory, const GumboNode* root) : memory_(std::move(memory)), root_(root) {}

  std::unique_ptr<std::byte[]> memory_;  // holds the whole tree
  const GumboNode* root_;
};

}  // namespace quillon
