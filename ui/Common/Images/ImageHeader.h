// Format and size of an image, from the first bytes of its file.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "ui/Common/Images/ImageFromBase64.h"

namespace quillon {

struct ImageHeader {
  EncodedImage::Format format = EncodedImage::png;
  std::uint32_t width = 0;  // any value: nothing is refused for its size
  std::uint32_t height = 0;
  bool isInPlanes = false;  // no row is complete before the last byte: interlaced, progressive, or GIF
};

// Nothing when the bytes are no PNG, GIF or JPEG, or end before the header does.
[[nodiscard]] std::optional<ImageHeader> imageHeader(std::string_view bytes);

}  // namespace quillon
