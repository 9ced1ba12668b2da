#include "ui/Common/RichText/InlineStyle.h"

#include <algorithm>
#include <charconv>

#include "core/Text/Ascii.h"
#include "core/Text/Utf8.h"

namespace quillon {
namespace {

constexpr std::string_view blanks = " \t\n\f\r";
// Longer URLs are not links, since every run has a copy.
constexpr std::size_t longestRunLink = 2048;
// Limits for nested <small> and <big>.
constexpr double smallestScale = 0.5;
constexpr double largestScale = 3;

std::string_view withoutBlanks(std::string_view text) {
  const auto begin = std::min(text.find_first_not_of(blanks), text.size());
  return text.substr(begin, text.find_last_not_of(blanks) + 1 - begin);
}

std::string_view attribute(const GumboElement& element, const char* name) {
  const GumboAttribute* const found = gumbo_get_attribute(&element.attributes, name);
  return found != nullptr ? found->value : std::string_view();
}

// Removes and returns the text up to the separator; also removes the separator.
std::string_view taken(std::string_view& text, std::string_view separators) {
  const auto end = std::min(text.find_first_of(separators), text.size());
  const auto piece = text.substr(0, end);
  text.remove_prefix(std::min(end + 1, text.size()));
  return piece;
}

// Calls with (property, word) for each word of each declaration in the `style` attribute.
template <class Visit>
void forEachStyleWord(const GumboElement& element, Visit visit) {
  for (auto rest = attribute(element, "style"); !rest.empty();) {
    auto words = taken(rest, ";");
    const auto property = withoutBlanks(taken(words, ":"));
    while (!words.empty()) {
      if (const auto word = taken(words, " \t\n\f\r!,"); !word.empty()) visit(property, word);
    }
  }
}

void applyTag(InlineStyle& style, const GumboElement& element) {
  switch (element.tag) {
    case GUMBO_TAG_H1:
      style.scale *= 2;
      break;
    case GUMBO_TAG_H2:
      style.scale *= 1.5;
      break;
    case GUMBO_TAG_H3:
      style.scale *= 1.17;
      break;
    case GUMBO_TAG_H5:
      style.scale *= 0.83;
      break;
    case GUMBO_TAG_H6:
      style.scale *= 0.67;
      break;
    case GUMBO_TAG_SMALL:
      style.scale /= 1.2;
      break;
    case GUMBO_TAG_BIG:
      style.scale *= 1.2;
      break;
    default:
      break;
  }
  style.scale = std::clamp(style.scale, smallestScale, largestScale);

  switch (element.tag) {
    case GUMBO_TAG_B:
    case GUMBO_TAG_STRONG:
    case GUMBO_TAG_H1:
    case GUMBO_TAG_H2:
    case GUMBO_TAG_H3:
    case GUMBO_TAG_H4:
    case GUMBO_TAG_H5:
    case GUMBO_TAG_H6:
    case GUMBO_TAG_TH:
      style.bold = true;
      break;
    case GUMBO_TAG_I:
    case GUMBO_TAG_EM:
    case GUMBO_TAG_CITE:
    case GUMBO_TAG_DFN:
    case GUMBO_TAG_VAR:
    case GUMBO_TAG_ADDRESS:
      style.italic = true;
      break;
    case GUMBO_TAG_PRE:
    case GUMBO_TAG_LISTING:
    case GUMBO_TAG_XMP:
    case GUMBO_TAG_PLAINTEXT:
      style.preformatted = true;
      break;
    case GUMBO_TAG_A: {
      const auto address = withoutBlanks(attribute(element, "href"));
      const bool hasControls = std::ranges::any_of(address, [](unsigned char c) { return c < 0x20 || c == 0x7f; });
      if (address.size() <= longestRunLink && !hasControls && isUtf8(address)) style.link = address;
      break;
    }
    default:
      break;
  }
}

void applyFont(InlineStyle& style, std::string_view property, std::string_view word) {
  if (equalButForCase(property, "font-weight")) {
    int weight = 0;
    std::from_chars(word.data(), word.data() + word.size(), weight);
    if (equalButForCase(word, "bold") || equalButForCase(word, "bolder") || weight >= 600) style.bold = true;
    if (equalButForCase(word, "normal") || equalButForCase(word, "lighter") || (weight > 0 && weight < 600))
      style.bold = false;
  } else if (equalButForCase(property, "font-style")) {
    if (equalButForCase(word, "italic") || equalButForCase(word, "oblique")) style.italic = true;
    if (equalButForCase(word, "normal")) style.italic = false;
  }
}

}  // namespace

InlineStyle InlineStyle::within(const GumboElement& element) const {
  InlineStyle style = *this;
  applyTag(style, element);

  // Descendants can add decoration lines but not remove their ancestors'.
  const auto tag = element.tag;
  bool under = tag == GUMBO_TAG_U || tag == GUMBO_TAG_INS || (tag == GUMBO_TAG_A && !style.link.empty());
  bool through = tag == GUMBO_TAG_S || tag == GUMBO_TAG_STRIKE || tag == GUMBO_TAG_DEL;
  forEachStyleWord(element, [&](std::string_view property, std::string_view word) {
    applyFont(style, property, word);
    if (!equalButForCase(property, "text-decoration") && !equalButForCase(property, "text-decoration-line")) return;
    if (equalButForCase(word, "none")) under = through = false;
    if (equalButForCase(word, "underline")) under = true;
    if (equalButForCase(word, "line-through")) through = true;
  });
  style.underline |= under;
  style.strikethrough |= through;
  return style;
}

bool isHidden(const GumboElement& element) {
  switch (element.tag) {
    case GUMBO_TAG_APPLET:
    case GUMBO_TAG_AUDIO:
    case GUMBO_TAG_CANVAS:
    case GUMBO_TAG_DATALIST:
    case GUMBO_TAG_EMBED:
    case GUMBO_TAG_HEAD:
    case GUMBO_TAG_IFRAME:
    case GUMBO_TAG_IMG:
    case GUMBO_TAG_NOEMBED:
    case GUMBO_TAG_NOFRAMES:
    case GUMBO_TAG_NOSCRIPT:
    case GUMBO_TAG_OBJECT:
    case GUMBO_TAG_SCRIPT:
    case GUMBO_TAG_SELECT:
    case GUMBO_TAG_STYLE:
    case GUMBO_TAG_SVG:
    case GUMBO_TAG_TEMPLATE:
    case GUMBO_TAG_TEXTAREA:
    case GUMBO_TAG_TITLE:
    case GUMBO_TAG_VIDEO:
      return true;
    default:
      break;
  }
  bool hidden = gumbo_get_attribute(&element.attributes, "hidden") != nullptr;
  forEachStyleWord(element, [&hidden](std::string_view property, std::string_view word) {
    if (equalButForCase(property, "display")) hidden |= equalButForCase(word, "none");
  });
  return hidden;
}

}  // namespace quillon
