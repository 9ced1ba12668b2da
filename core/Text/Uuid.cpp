#include "core/Text/Uuid.h"

namespace quillon {

std::string uuidOf(std::array<std::uint8_t, 16> bytes, unsigned version, std::string_view digits) {
  bytes[6] = static_cast<std::uint8_t>((bytes[6] & 0x0f) | version << 4);
  bytes[8] = static_cast<std::uint8_t>((bytes[8] & 0x3f) | 0x80);
  std::string text;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    if (i == 4 || i == 6 || i == 8 || i == 10) text += '-';
    appendHex(text, static_cast<char>(bytes[i]), digits);
  }
  return text;
}

std::string randomUuid(RandomSource& random, std::string_view digits) {
  const std::uint64_t bits[] = {random.next(), random.next()};
  std::array<std::uint8_t, 16> bytes;
  for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<std::uint8_t>(bits[i / 8] >> (56 - i % 8 * 8));
  return uuidOf(bytes, 4, digits);
}

}  // namespace quillon
