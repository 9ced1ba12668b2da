// Text styles of HTML elements.
#pragma once

#include <gumbo.h>

#include <string_view>

#include "ui/Common/RichText/RichText.h"

namespace quillon {

struct InlineStyle {
  bool bold = false;
  bool italic = false;
  bool underline = false;
  bool strikethrough = false;
  bool preformatted = false;
  double scale = 1;
  std::string_view link;  // empty: none; points into the tree

  // The style of an element inside text of this style.
  [[nodiscard]] InlineStyle within(const GumboElement& element) const;
};

// Whether the element and its descendants produce no text.
[[nodiscard]] bool isHidden(const GumboElement& element);

}  // namespace quillon
