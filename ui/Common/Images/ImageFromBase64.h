// Images that a configuration holds as base64 text.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "quillon/SDKLogger.h"

namespace quillon {

// The file of an image, for a toolkit to decode at a bounded cost. Its header is complete and names a size that can be
// drawn; the rest may be damaged or cut off.
struct EncodedImage {
  enum Format : std::uint8_t { png, gif, jpeg };

  std::string bytes;
  Format format = png;
  int width = 0;  // pixels, as the header says: at least 1
  int height = 0;

  bool operator==(const EncodedImage&) const = default;
};

// Reads base64 text with or without the prefix of a data URL for PNG, GIF or JPEG; characters that are not of base64
// are skipped. Nothing, and an error in the log, when the text exceeds 1 MiB, is no base64 or holds none of the three,
// or when the image would cost too much to decode (ImageCost.h). Thread-safe.
[[nodiscard]] std::optional<EncodedImage> imageFromBase64(std::string_view base64String, SDKLogger& logger);

}  // namespace quillon
