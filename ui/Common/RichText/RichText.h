// Configured HTML snippets as styled text.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillon {

// A longer text is refused.
inline constexpr std::size_t largestHtml = std::size_t{256} << 10;

struct TextRun {
  enum Font : std::uint8_t { body, bold, italic };

  std::string text;  // valid UTF-8; its only control characters are the line feed and the tab
  Font font = body;  // a text that is both bold and italic is italic
  double scale = 1;  // size relative to that of the body text
  bool underline = false;
  bool strikethrough = false;
  // As the source has it: whether it may be opened is for the link filter to say.
  std::optional<std::string> link = std::nullopt;

  bool operator==(const TextRun&) const = default;
};

struct AttributedText {
  std::vector<TextRun> runs;  // none is empty, and no two neighbours have the same style

  bool operator==(const AttributedText&) const = default;
};

// Reads HTML as a browser does, with all its forgiveness; bytes that are not UTF-8 become U+FFFD. What could make a
// request or run yields nothing: images, frames, scripts, styles. Blocks, rows and <br> end lines, cells are a tab
// apart, list items begin with "• " or their number; a line end has the style of the element that brings it. Neither
// white space nor empty lines remain at either end.
//
// Nothing when the text is larger than largestHtml or made of so many tags that reading it would take long.
// Thread-safe.
[[nodiscard]] std::optional<AttributedText> richTextFromHtml(std::string_view html);

}  // namespace quillon
