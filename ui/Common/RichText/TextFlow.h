// HTML text flow: collapses white space, and keeps line ends only between texts.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "ui/Common/RichText/InlineStyle.h"
#include "ui/Common/RichText/RichText.h"

namespace quillon {

class TextFlow {
 public:
  // Preserves white space in preformatted text. Drops control characters and the two directional overrides (U+202D,
  // U+202E), which can disguise text; keeps other directional marks. Invalid UTF-8 becomes U+FFFD.
  void addText(std::string_view text, const InlineStyle& style);
  void addLineEnd(const InlineStyle& style);

  // Called at both ends of a block: ends a non-empty line.
  void endBlock(const InlineStyle& style);
  // Likewise for a table row; later cells cannot join the line.
  void endRow(const InlineStyle& style);
  // Called between two cells of a row.
  void addTab(const InlineStyle& style);

  // The marker is inserted before the item's first text, if it has any.
  void beginItem(std::string marker, const InlineStyle& style);
  void endItem() { marker_.reset(); }

  // The text, trimmed at both ends.
  [[nodiscard]] AttributedText take();

 private:
  void addWhiteSpace(char c, const InlineStyle& style);
  void addWord(std::string_view word, const InlineStyle& style);
  void settleLineEnd();
  void settle();
  void append(std::string_view text, const InlineStyle& style);

  AttributedText text_;
  bool isLineEmpty_ = true;
  // Pending, inserted before the next text. At most one of the first three is set.
  std::optional<InlineStyle> space_;
  std::optional<InlineStyle> lineEnd_;
  std::optional<std::pair<std::string, InlineStyle>> tabs_;
  std::optional<std::pair<std::string, InlineStyle>> marker_;
};

}  // namespace quillon
