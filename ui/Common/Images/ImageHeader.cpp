#include "ui/Common/Images/ImageHeader.h"

#include <algorithm>
#include <cstddef>

namespace quillon {
namespace {

using namespace std::string_view_literals;

std::uint32_t byteAt(std::string_view bytes, std::size_t at) {
  return static_cast<unsigned char>(bytes[at]);
}

std::uint32_t bigEndian(std::string_view bytes) {
  std::uint32_t value = 0;
  for (std::size_t i = 0; i < bytes.size(); ++i) value = value << 8 | byteAt(bytes, i);
  return value;
}

std::uint32_t littleEndian16(std::string_view bytes, std::size_t at) {
  return byteAt(bytes, at) | byteAt(bytes, at + 1) << 8;
}

std::optional<ImageHeader> pngHeader(std::string_view bytes) {
  constexpr auto beginning = "\x89PNG\r\n\x1a\n\0\0\0\x0dIHDR"sv;
  constexpr std::size_t complete = beginning.size() + 13 + 4;  // with the checksum
  if (!bytes.starts_with(beginning) || bytes.size() < complete) return std::nullopt;
  const bool isInterlaced = byteAt(bytes, 28) != 0;
  return ImageHeader{EncodedImage::png, bigEndian(bytes.substr(16, 4)), bigEndian(bytes.substr(20, 4)), isInterlaced};
}

std::optional<ImageHeader> gifHeader(std::string_view bytes) {
  constexpr std::size_t complete = 13;  // signature and logical screen descriptor
  if (!bytes.starts_with("GIF87a") && !bytes.starts_with("GIF89a")) return std::nullopt;
  if (bytes.size() < complete) return std::nullopt;
  return ImageHeader{EncodedImage::gif, littleEndian16(bytes, 6), littleEndian16(bytes, 8), true};
}

bool beginsFrame(std::uint32_t marker) {
  constexpr std::uint32_t huffmanTables = 0xc4;
  constexpr std::uint32_t reserved = 0xc8;
  constexpr std::uint32_t arithmeticConditioning = 0xcc;
  return marker >= 0xc0 && marker <= 0xcf && marker != huffmanTables && marker != reserved &&
         marker != arithmeticConditioning;
}

// Follows the segments up to the frame header.
std::optional<ImageHeader> jpegHeader(std::string_view bytes) {
  constexpr auto startOfImage = "\xff\xd8"sv;
  constexpr std::uint32_t startOfScan = 0xda;
  if (!bytes.starts_with(startOfImage)) return std::nullopt;
  bytes.remove_prefix(startOfImage.size());
  while (!bytes.empty() && byteAt(bytes, 0) == 0xff) {
    bytes.remove_prefix(std::min(bytes.find_first_not_of('\xff'), bytes.size()));  // fill bytes may precede a marker
    if (bytes.size() < 3) return std::nullopt;
    const auto marker = byteAt(bytes, 0);
    const std::size_t length = bigEndian(bytes.substr(1, 2));  // includes itself
    // Scan, end-of-image and standalone markers are invalid before the frame header.
    if (marker < 0xc0 || (marker >= 0xd0 && marker <= startOfScan)) return std::nullopt;
    if (length < 2 || bytes.size() < 1 + length) return std::nullopt;
    if (beginsFrame(marker)) {
      if (length < 8) return std::nullopt;
      constexpr std::uint32_t progressive = 2;  // among each group of four frame types
      return ImageHeader{EncodedImage::jpeg, bigEndian(bytes.substr(6, 2)), bigEndian(bytes.substr(4, 2)),
                         (marker & 3) == progressive};
    }
    bytes.remove_prefix(1 + length);
  }
  return std::nullopt;
}

}  // namespace

std::optional<ImageHeader> imageHeader(std::string_view bytes) {
  for (const auto read : {pngHeader, gifHeader, jpegHeader}) {
    if (auto header = read(bytes)) return header;
  }
  return std::nullopt;
}

}  // namespace quillon
