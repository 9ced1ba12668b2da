// Base64 images of a configuration.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "quillon/SDKLogger.h"

namespace quillon {

// An image file that a toolkit can decode at bounded cost. Its header is complete with a valid size; the rest may be
// damaged or truncated.
struct EncodedImage {
  enum Format : std::uint8_t { png, gif, jpeg };

  std::string bytes;
  Format format = png;
  int width = 0;  // pixels according to the header, at least 1
  int height = 0;

  bool operator==(const EncodedImage&) const = default;
};

// Decodes base64 text, with or without the prefix of a data URL for PNG, GIF or JPEG; skips other characters. Returns
// nullopt and logs an error if the text exceeds 1 MiB, is not base64, is in another format, or is too expensive to
// decode (ImageCost.h). Thread-safe.
[[nodiscard]] std::optional<EncodedImage> imageFromBase64(std::string_view base64String, SDKLogger& logger);

}  // namespace quillon
