#include "proof/Receipt/Identifiers.h"

#include <algorithm>
#include <array>
#include <cstdint>

#include "core/Text/Sha256.h"

namespace quillon::proof {
namespace {

std::string uuid(std::array<std::uint8_t, 16> bytes, unsigned version) {
  bytes[6] = static_cast<std::uint8_t>((bytes[6] & 0x0f) | version << 4);
  bytes[8] = static_cast<std::uint8_t>((bytes[8] & 0x3f) | 0x80);
  std::string text;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    if (i == 4 || i == 6 || i == 8 || i == 10) text += '-';
    text += "0123456789abcdef"[bytes[i] >> 4];
    text += "0123456789abcdef"[bytes[i] & 15];
  }
  return text;
}

}  // namespace

std::string randomUuid(RandomSource& random) {
  std::array<std::uint8_t, 16> bytes;
  for (std::size_t i = 0; i < bytes.size(); i += 8) {
    auto bits = random.next();
    for (std::size_t j = 0; j < 8; ++j, bits >>= 8) bytes[i + j] = static_cast<std::uint8_t>(bits);
  }
  return uuid(bytes, 4);
}

std::string uuidOf(std::string_view text) {
  const auto digest = sha256Bytes(text);
  std::array<std::uint8_t, 16> bytes;
  std::copy_n(digest.begin(), bytes.size(), bytes.begin());
  return uuid(bytes, 8);
}

}  // namespace quillon::proof
