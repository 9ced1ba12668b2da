#include "ui/Common/Images/ImageCost.h"

#include <zlib.h>

#include <array>
#include <string_view>

namespace quillon {
namespace {

using namespace std::string_view_literals;

std::uint32_t byteOf(std::string_view bytes, std::size_t at) {
  return static_cast<unsigned char>(bytes[at]);
}

std::uint32_t bigEndian32(std::string_view bytes, std::size_t at) {
  return byteOf(bytes, at) << 24 | byteOf(bytes, at + 1) << 16 | byteOf(bytes, at + 2) << 8 | byteOf(bytes, at + 3);
}

// Measures the decompressed size without storing the data.
class Inflation {
 public:
  Inflation() : isSound_(inflateInit(&stream_) == Z_OK) {}
  ~Inflation() { inflateEnd(&stream_); }
  Inflation(const Inflation&) = delete;
  Inflation& operator=(const Inflation&) = delete;

  // False if the output exceeds the limit. Data after an error or the end is ignored, as by the decoder.
  bool add(std::string_view data, std::uint64_t limit) {
    stream_.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(data.data()));  // zlib does not modify the input
    stream_.avail_in = static_cast<uInt>(data.size());
    while (isSound_ && stream_.avail_in > 0) {
      stream_.next_out = output_.data();
      stream_.avail_out = static_cast<uInt>(output_.size());
      isSound_ = inflate(&stream_, Z_NO_FLUSH) == Z_OK;
      if (stream_.total_out > limit) return false;
    }
    return true;
  }

 private:
  z_stream stream_{};
  bool isSound_;
  std::array<Bytef, std::size_t{32} << 10> output_{};
};

constexpr std::size_t signatureSize = 8;
constexpr std::size_t chunkFrame = 12;  // length, name and checksum

bool isAboutPixels(std::string_view chunk) {
  return chunk == "IHDR" || chunk == "PLTE" || chunk == "tRNS" || chunk == "IDAT" || chunk == "IEND";
}

// The size of the uncompressed pixel data, with one filter byte per row and interlace pass.
std::uint64_t inflatedSize(std::string_view bytes, const ImageHeader& header) {
  constexpr std::array channels{1, 0, 3, 1, 2, 0, 4};
  const std::size_t kind = byteOf(bytes, 25);
  const std::uint64_t bits =
      byteOf(bytes, 24) * static_cast<std::uint64_t>(kind < channels.size() ? channels[kind] : 4);
  const std::uint64_t row = (header.width * bits + 7) / 8 + 1;
  constexpr std::uint64_t passes = 7;
  return row * header.height + 2 * passes * (header.width + header.height);
}

std::optional<std::string> affordablePng(const std::string& bytes, const ImageHeader& header) {
  const std::uint64_t size = inflatedSize(bytes, header);
  if (size > largestInflatedImage) return std::nullopt;
  std::string kept = bytes.substr(0, signatureSize);
  Inflation inflation;
  for (std::size_t at = signatureSize; at + chunkFrame <= bytes.size();) {
    const std::size_t length = bigEndian32(bytes, at);
    const auto chunk = std::string_view(bytes).substr(at, length + chunkFrame);
    if (isAboutPixels(chunk.substr(4, 4))) kept += chunk;
    if (chunk.substr(4, 4) == "IDAT" && !inflation.add(chunk.substr(8, length), size)) return std::nullopt;
    if (chunk.substr(4, 4) == "IEND") break;
    at += length + chunkFrame;
  }
  return kept;
}

// Checks the first frame, the only one displayed.
bool isGifFrameWithin(std::string_view bytes, const ImageHeader& header) {
  const auto tableSize = [&](std::size_t flagsAt) -> std::size_t {
    const std::uint32_t flags = byteOf(bytes, flagsAt);
    return (flags & 0x80) != 0 ? std::size_t{3} << ((flags & 7) + 1) : 0;
  };
  constexpr std::uint32_t extension = 0x21;
  constexpr std::uint32_t image = 0x2c;
  constexpr std::size_t descriptor = 10;
  std::size_t at = 13 + tableSize(10);
  while (at + 2 < bytes.size() && byteOf(bytes, at) == extension) {
    for (at += 2; at < bytes.size() && byteOf(bytes, at) != 0;) at += byteOf(bytes, at) + 1;
    ++at;
  }
  if (at + descriptor > bytes.size() || byteOf(bytes, at) != image) return true;  // has no pixels
  const auto word = [&](std::size_t offset) {
    return byteOf(bytes, at + offset) | byteOf(bytes, at + offset + 1) << 8;
  };
  return word(1) + word(5) <= header.width && word(3) + word(7) <= header.height;
}

// Entropy-coded data escapes 0xFF with 0, so the marker occurs only where a scan begins.
std::size_t scansOf(std::string_view bytes) {
  std::size_t scans = 0;
  for (std::size_t at = 0; (at = bytes.find("\xff\xda"sv, at)) != std::string_view::npos; at += 2) ++scans;
  return scans;
}

}  // namespace

std::optional<std::string> affordableImage(std::string bytes, const ImageHeader& header) {
  const std::uint64_t pixels = std::uint64_t{header.width} * header.height;
  if (pixels == 0 || header.width > longestImageSide || header.height > longestImageSide) return std::nullopt;
  if (pixels > (header.needsFullBuffer ? mostPixelsInPlanes : mostPixels)) return std::nullopt;
  switch (header.format) {
    case EncodedImage::png:
      return affordablePng(bytes, header);
    case EncodedImage::gif:
      if (!isGifFrameWithin(bytes, header)) return std::nullopt;
      break;
    case EncodedImage::jpeg: {
      const std::size_t scans = scansOf(bytes);
      if (scans > mostScans || (scans > 1 && pixels > mostPixelsInPlanes)) return std::nullopt;
      break;
    }
  }
  return bytes;
}

}  // namespace quillon
