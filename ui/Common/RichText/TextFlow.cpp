#include "ui/Common/RichText/TextFlow.h"

#include "core/Text/Utf8.h"
#include "ui/Common/RichText/StringUtils.h"

namespace quillon {
namespace {

bool isSpace(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\f' || c == '\r';
}

bool isExcluded(std::string_view character) {
  const auto first = static_cast<unsigned char>(character[0]);
  if (first < 0x20 || first == 0x7f) return true;
  if (first == 0xc2 && static_cast<unsigned char>(character[1]) < 0xa0) return true;
  return character == "\u202d" || character == "\u202e";
}

// The length of the prefix without white space, excluded characters and invalid UTF-8.
std::size_t wordLength(std::string_view text) {
  std::size_t length = 0;
  while (length < text.size() && !isSpace(text[length])) {
    const auto size = utf8Length(text.substr(length));
    if (size == 0 || isExcluded(text.substr(length, size))) break;
    length += size;
  }
  return length;
}

TextRun::Font fontOf(const InlineStyle& style) {
  if (style.italic) return TextRun::italic;
  return style.bold ? TextRun::bold : TextRun::body;
}

bool hasStyle(const TextRun& run, const InlineStyle& style) {
  return run.font == fontOf(style) && run.scale == style.scale && run.underline == style.underline &&
         run.strikethrough == style.strikethrough &&
         (run.link ? std::string_view(*run.link) : std::string_view()) == style.link;
}

}  // namespace

void TextFlow::addText(std::string_view text, const InlineStyle& style) {
  while (!text.empty()) {
    std::size_t size = wordLength(text);
    if (size > 0) {
      addWord(text.substr(0, size), style);
    } else if (isSpace(text[0])) {
      size = 1;
      addWhiteSpace(text[0], style);
    } else if (size = utf8Length(text); size == 0) {  // from a numeric reference to an invalid character
      size = 1;
      addWord("\ufffd", style);
    }
    text.remove_prefix(size);
  }
}

void TextFlow::addLineEnd(const InlineStyle& style) {
  space_.reset();
  settle();
  append("\n", style);
  isLineEmpty_ = true;
}

void TextFlow::endBlock(const InlineStyle& style) {
  space_.reset();
  if (!isLineEmpty_ && !lineEnd_ && !tabs_) lineEnd_ = style;
}

void TextFlow::endRow(const InlineStyle& style) {
  tabs_.reset();
  endBlock(style);
  settleLineEnd();
}

void TextFlow::addTab(const InlineStyle& style) {
  space_.reset();
  lineEnd_.reset();
  if (!tabs_) tabs_.emplace("", style);
  tabs_->first += '\t';
}

void TextFlow::beginItem(std::string marker, const InlineStyle& style) {
  endBlock(style);
  marker_.emplace(std::move(marker), style);
}

AttributedText TextFlow::take() {
  return trimmed(std::exchange(text_, {}));
}

void TextFlow::addWhiteSpace(char c, const InlineStyle& style) {
  if (style.preformatted) {
    if (c == '\n') return addLineEnd(style);
    return addWord(c == '\t' ? "\t" : " ", style);
  }
  if (!isLineEmpty_ && !space_ && !lineEnd_ && !tabs_ && !marker_) space_ = style;
}

void TextFlow::addWord(std::string_view word, const InlineStyle& style) {
  settle();
  append(word, style);
  isLineEmpty_ = false;
}

void TextFlow::settleLineEnd() {
  if (!lineEnd_) return;
  append("\n", *lineEnd_);
  lineEnd_.reset();
  isLineEmpty_ = true;
}

void TextFlow::settle() {
  settleLineEnd();
  if (tabs_) append(tabs_->first, tabs_->second);
  if (marker_) append(marker_->first, marker_->second);
  if (space_) append(" ", *space_);
  tabs_.reset();
  marker_.reset();
  space_.reset();
}

void TextFlow::append(std::string_view text, const InlineStyle& style) {
  auto& runs = text_.runs;
  if (runs.empty() || !hasStyle(runs.back(), style)) {
    auto& run = runs.emplace_back();
    run.font = fontOf(style);
    run.scale = style.scale;
    run.underline = style.underline;
    run.strikethrough = style.strikethrough;
    if (!style.link.empty()) run.link = style.link;
  }
  runs.back().text += text;
}

}  // namespace quillon
