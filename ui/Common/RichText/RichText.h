// Converts configured HTML snippets to styled text.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillon {

// In bytes; longer texts are rejected.
inline constexpr std::size_t largestHtml = std::size_t{256} << 10;

struct TextRun {
  enum Font : std::uint8_t { body, bold, italic };

  std::string text;  // valid UTF-8 without control characters other than line feed and tab
  Font font = body;  // text that is bold and italic is italic
  double scale = 1;  // relative to the body text
  bool underline = false;
  bool strikethrough = false;
  // As in the source; the link filter decides whether it may be opened.
  std::optional<std::string> link = std::nullopt;

  bool operator==(const TextRun&) const = default;
};

struct AttributedText {
  std::vector<TextRun> runs;  // not empty; adjacent runs differ in style

  bool operator==(const AttributedText&) const = default;
};

// Parses HTML as leniently as browsers; invalid UTF-8 becomes U+FFFD. Content that could load or run something is
// dropped: images, frames, scripts, styles. Blocks, rows and <br> end lines, cells are separated by tabs, list items
// begin with "• " or their number; a line end has the style of its element. Leading and trailing white space and empty
// lines are removed.
//
// nullopt if the text exceeds largestHtml or has so many tags that parsing would take long. Thread-safe.
[[nodiscard]] std::optional<AttributedText> richTextFromHtml(std::string_view html);

}  // namespace quillon
