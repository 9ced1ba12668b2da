// A page with the pictures of all screens, for review.
#pragma once

#include <expected>
#include <string>

#include "ui/preview/Preview.h"

namespace quillon::preview {

// Draws every screen in each language, in light and dark surroundings, with each banner that some place gets, and
// writes an HTML page that needs nothing else. Size and scale are the view's. Each picture has its measured contrast,
// and the sizes of a banner's answers. The error is a sentence.
[[nodiscard]] std::expected<void, std::string> writeSheet(const std::string& document, const std::string& out,
                                                          const View& view);

}  // namespace quillon::preview
