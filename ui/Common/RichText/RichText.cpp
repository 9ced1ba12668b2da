#include "ui/Common/RichText/RichText.h"

#include <algorithm>
#include <charconv>
#include <cstddef>

#include "ui/Common/RichText/HtmlTree.h"
#include "ui/Common/RichText/InlineStyle.h"
#include "ui/Common/RichText/TextFlow.h"

namespace quillon {
namespace {

enum class Layout : std::uint8_t { inline_, lineEnd, block, row, cell, list, item };

Layout layoutOf(GumboTag tag) {
  switch (tag) {
    case GUMBO_TAG_BR:
      return Layout::lineEnd;
    case GUMBO_TAG_ADDRESS:
    case GUMBO_TAG_ARTICLE:
    case GUMBO_TAG_ASIDE:
    case GUMBO_TAG_BLOCKQUOTE:
    case GUMBO_TAG_CAPTION:
    case GUMBO_TAG_CENTER:
    case GUMBO_TAG_DD:
    case GUMBO_TAG_DETAILS:
    case GUMBO_TAG_DIV:
    case GUMBO_TAG_DL:
    case GUMBO_TAG_DT:
    case GUMBO_TAG_FIELDSET:
    case GUMBO_TAG_FIGCAPTION:
    case GUMBO_TAG_FIGURE:
    case GUMBO_TAG_FOOTER:
    case GUMBO_TAG_FORM:
    case GUMBO_TAG_H1:
    case GUMBO_TAG_H2:
    case GUMBO_TAG_H3:
    case GUMBO_TAG_H4:
    case GUMBO_TAG_H5:
    case GUMBO_TAG_H6:
    case GUMBO_TAG_HEADER:
    case GUMBO_TAG_HGROUP:
    case GUMBO_TAG_HR:
    case GUMBO_TAG_LEGEND:
    case GUMBO_TAG_LISTING:
    case GUMBO_TAG_MAIN:
    case GUMBO_TAG_NAV:
    case GUMBO_TAG_P:
    case GUMBO_TAG_PLAINTEXT:
    case GUMBO_TAG_PRE:
    case GUMBO_TAG_SECTION:
    case GUMBO_TAG_SUMMARY:
    case GUMBO_TAG_TABLE:
    case GUMBO_TAG_XMP:
      return Layout::block;
    case GUMBO_TAG_TR:
      return Layout::row;
    case GUMBO_TAG_TD:
    case GUMBO_TAG_TH:
      return Layout::cell;
    case GUMBO_TAG_DIR:
    case GUMBO_TAG_MENU:
    case GUMBO_TAG_OL:
    case GUMBO_TAG_UL:
      return Layout::list;
    case GUMBO_TAG_LI:
      return Layout::item;
    default:
      return Layout::inline_;
  }
}

std::optional<int> integerAttribute(const GumboElement& element, const char* name) {
  const GumboAttribute* const attribute = gumbo_get_attribute(&element.attributes, name);
  if (attribute == nullptr) return std::nullopt;
  const std::string_view text = attribute->value;
  int value = 0;
  if (std::from_chars(text.data(), text.data() + text.size(), value).ec != std::errc()) return std::nullopt;
  return std::clamp(value, -999'999, 999'999);
}

// Traverses the tree with an explicit stack, since its depth is untrusted.
class Reader {
 public:
  AttributedText textOf(const GumboNode& root) {
    enter(root.v.element, Level{});
    while (!levels_.empty()) {
      auto& level = levels_.back();
      const GumboVector& children = level.element->children;
      if (level.next == children.length) {
        leave(level);
        levels_.pop_back();
      } else {
        visit(*static_cast<const GumboNode*>(children.data[level.next++]));
      }
    }
    return flow_.take();
  }

 private:
  // An open element.
  struct Level {
    const GumboElement* element = nullptr;
    Layout layout = Layout::inline_;
    InlineStyle style;
    unsigned next = 0;           // index of the next child
    std::size_t lists = 0;       // number of enclosing lists, including this
    int number = 1;              // of the next item, in a numbered list
    bool hasCellBefore = false;  // in a row
  };

  void visit(const GumboNode& node) {
    switch (node.type) {
      case GUMBO_NODE_TEXT:
      case GUMBO_NODE_WHITESPACE:
      case GUMBO_NODE_CDATA:
        flow_.addText(node.v.text.text, levels_.back().style);
        break;
      case GUMBO_NODE_ELEMENT:
        if (!isHidden(node.v.element)) enter(node.v.element, levels_.back());
        break;
      default:
        break;
    }
  }

  // `parent` is passed by value, since pushing may reallocate levels_.
  void enter(const GumboElement& element, Level parent) {
    Level level{.element = &element, .layout = layoutOf(element.tag), .style = parent.style.within(element)};
    level.lists = parent.lists;
    switch (level.layout) {
      case Layout::inline_:
        break;
      case Layout::lineEnd:
        flow_.addLineEnd(parent.style);
        break;
      case Layout::block:
        flow_.endBlock(parent.style);
        break;
      case Layout::row:
        flow_.endRow(parent.style);
        break;
      case Layout::cell:
        if (parent.hasCellBefore) flow_.addTab(parent.style);
        levels_.back().hasCellBefore = true;
        break;
      case Layout::list:
        flow_.endBlock(parent.style);
        level.number = integerAttribute(element, "start").value_or(1);
        ++level.lists;
        break;
      case Layout::item:
        flow_.beginItem(markerOf(element, levels_.back()), level.style);
        break;
    }
    levels_.push_back(level);
  }

  void leave(const Level& level) {
    switch (level.layout) {
      case Layout::inline_:
      case Layout::lineEnd:
      case Layout::cell:
        break;
      case Layout::item:
        flow_.endItem();
        [[fallthrough]];
      case Layout::block:
      case Layout::list:
        flow_.endBlock(level.style);
        break;
      case Layout::row:
        flow_.endRow(level.style);
        break;
    }
  }

  static std::string markerOf(const GumboElement& item, Level& parent) {
    constexpr std::size_t deepestIndent = 8;
    const auto outerLists = std::max<std::size_t>(parent.lists, 1) - 1;
    std::string marker(4 * std::min(outerLists, deepestIndent), ' ');
    if (parent.element->tag != GUMBO_TAG_OL) return marker + "• ";
    const int number = integerAttribute(item, "value").value_or(parent.number);
    parent.number = number + 1;
    return marker + std::to_string(number) + ". ";
  }

  TextFlow flow_;
  std::vector<Level> levels_;
};

}  // namespace

std::optional<AttributedText> richTextFromHtml(std::string_view html) {
  const auto tree = HtmlTree::parse(html);
  if (!tree) return std::nullopt;
  return Reader().textOf(tree->root());
}

}  // namespace quillon
