// An HTML page with pictures of all screens, for review.
#pragma once

#include <expected>
#include <string>

#include "ui/preview/Preview.h"

namespace quillon::preview {

// Draws every screen in each language, light and dark, with every banner that is used at some location, and writes a
// self-contained HTML page, with the measured contrast of each picture and the sizes of a banner's answers. Size and
// scale are the view's. The error is a sentence.
[[nodiscard]] std::expected<void, std::string> writeSheet(const std::string& document, const std::string& out,
                                                          const View& view);

}  // namespace quillon::preview
