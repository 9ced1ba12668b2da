// What an image would cost to decode, told before a decoder sees it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "ui/Common/Images/ImageHeader.h"

namespace quillon {

// A logo is drawn at most 256 pixels long, and never worth a second.
inline constexpr std::uint64_t mostPixels = 4'000'000;
// Where the whole image is kept until its last byte: interlaced PNG, GIF, JPEG of several scans.
inline constexpr std::uint64_t mostPixelsInPlanes = 2'000'000;
inline constexpr std::uint32_t longestImageSide = 16'384;
inline constexpr std::size_t mostScans = 32;
inline constexpr std::uint64_t largestInflatedImage = std::uint64_t{14} << 20;

// The file as a decoder may have it: a PNG without the chunks that say nothing about its pixels. Nothing when decoding
// would take more than some tenths of a second or 32 MB. Damaged files pass, as long as they are cheap.
[[nodiscard]] std::optional<std::string> affordableImage(std::string bytes, const ImageHeader& header);

}  // namespace quillon
