// Reads an image's format and size from the beginning of its file.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "ui/Common/Images/ImageFromBase64.h"

namespace quillon {

struct ImageHeader {
  EncodedImage::Format format = EncodedImage::png;
  std::uint32_t width = 0;  // not limited here
  std::uint32_t height = 0;
  bool needsFullBuffer = false;  // rows are incomplete until the last byte: interlaced, progressive, or GIF
};

// nullopt if the data is not PNG, GIF or JPEG, or ends within the header.
[[nodiscard]] std::optional<ImageHeader> imageHeader(std::string_view bytes);

}  // namespace quillon
