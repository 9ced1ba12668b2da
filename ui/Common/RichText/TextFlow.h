// Text as HTML lets it flow: white space collapses, and line ends show only between two pieces of text.
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
  // White space in preformatted text is kept. Control characters are left out, and so are the two that make text read
  // in another order than it is written whatever its letters are; other directional marks stay. Bytes that are not
  // UTF-8 become U+FFFD.
  void addText(std::string_view text, const InlineStyle& style);
  void addLineEnd(const InlineStyle& style);

  // At both ends of a block: the line ends if it has any text.
  void endBlock(const InlineStyle& style);
  // The same for the row of a table, for good: cells of the next one cannot join the line.
  void endRow(const InlineStyle& style);
  // Between two cells of a row.
  void addTab(const InlineStyle& style);

  // What stands before the next text, if there is any before endItem().
  void beginItem(std::string marker, const InlineStyle& style);
  void endItem() { marker_.reset(); }

  // Without white space at the ends.
  [[nodiscard]] AttributedText take();

 private:
  void addWhiteSpace(char c, const InlineStyle& style);
  void addWord(std::string_view word, const InlineStyle& style);
  void settleLineEnd();
  void settle();
  void append(std::string_view text, const InlineStyle& style);

  AttributedText text_;
  bool isLineEmpty_ = true;
  // What will be added before the next text. At most one of the first three.
  std::optional<InlineStyle> space_;
  std::optional<InlineStyle> lineEnd_;
  std::optional<std::pair<std::string, InlineStyle>> tabs_;
  std::optional<std::pair<std::string, InlineStyle>> marker_;
};

}  // namespace quillon
