// Estimates an image's decoding cost before a decoder sees it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "ui/Common/Images/ImageHeader.h"

namespace quillon {

// Logos are drawn at up to 256 pixels, so larger ones are a waste; the limit bounds decoding time.
inline constexpr std::uint64_t mostPixels = 4'000'000;
// The limit for formats that decoders buffer completely: interlaced PNG, GIF, multi-scan JPEG.
inline constexpr std::uint64_t mostPixelsInPlanes = 2'000'000;
inline constexpr std::uint32_t longestImageSide = 16'384;
inline constexpr std::size_t mostScans = 32;
inline constexpr std::uint64_t largestInflatedImage = std::uint64_t{14} << 20;

// The file to give to a decoder: a PNG loses the chunks that do not affect its pixels. nullopt if decoding would take
// more than some tenths of a second or 32 MB. Damaged files pass if they are cheap.
[[nodiscard]] std::optional<std::string> affordableImage(std::string bytes, const ImageHeader& header);

}  // namespace quillon
