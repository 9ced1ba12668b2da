// HTML text as a tree, within bounds of time, memory and stack.
#pragma once

#include <gumbo.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <string_view>

namespace quillon {

class HtmlTree {
 public:
  // Nothing when the text exceeds a bound: largestHtml, 4096 tags and attributes, or the memory that its tree may take.
  [[nodiscard]] static std::optional<HtmlTree> parse(std::string_view html);

  // The element <html>. The tree may be as deep as it has tags: no way for recursion. Its nodes know nothing of the
  // text: original_text and the like must not be looked at.
  const GumboNode& root() const { return *root_; }

 private:
  HtmlTree(std::unique_ptr<std::byte[]> memory, const GumboNode* root) : memory_(std::move(memory)), root_(root) {}

  std::unique_ptr<std::byte[]> memory_;  // holds the whole tree
  const GumboNode* root_;
};

}  // namespace quillon
