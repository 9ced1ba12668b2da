#include "signals/Bits/BitReader.h"

#include <algorithm>
#include <array>

#include "signals/Bits/Base64Url.h"

namespace quillon::signals {
namespace {

constexpr std::uint8_t kNoDigit = 64;

constexpr auto digitValues = [] {
  std::array<std::uint8_t, 256> values{};
  values.fill(kNoDigit);
  for (std::size_t i = 0; i < base64UrlDigits.size(); ++i) {
    values[static_cast<unsigned char>(base64UrlDigits[i])] = static_cast<std::uint8_t>(i);
  }
  return values;
}();

}  // namespace

std::expected<BitReader, std::string> BitReader::over(std::string_view text) {
  BitReader reader;
  reader.size_ = text.size() * 6;
  reader.bytes_.reserve(reader.size_ / 8 + 1);
  std::uint32_t pending = 0;
  unsigned pendingBits = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const std::uint8_t digit = digitValues[static_cast<unsigned char>(text[i])];
    if (digit == kNoDigit) return std::unexpected("character " + std::to_string(i + 1) + " is not base64url");
    pending = pending << 6 | digit;
    pendingBits += 6;
    if (pendingBits >= 8) reader.bytes_.push_back(static_cast<std::uint8_t>(pending >> (pendingBits -= 8)));
  }
  if (pendingBits > 0) reader.bytes_.push_back(static_cast<std::uint8_t>(pending << (8 - pendingBits)));
  return reader;
}

std::uint64_t BitReader::read(unsigned count) {
  if (count > left()) {
    isPastEnd_ = true;
    return 0;
  }
  std::uint64_t value = 0;
  while (count > 0) {
    const unsigned offset = static_cast<unsigned>(next_ % 8);
    const unsigned taken = std::min(count, 8 - offset);
    const unsigned piece = bytes_[next_ / 8] >> (8 - offset - taken) & ((1U << taken) - 1);
    value = value << taken | piece;
    next_ += taken;
    count -= taken;
  }
  return value;
}

bool BitReader::hasOnlyPadding() const {
  BitReader rest = *this;
  while (rest.left() > 0) {
    if (rest.read(static_cast<unsigned>(std::min<std::size_t>(rest.left(), 64))) != 0) return false;
  }
  return true;
}

}  // namespace quillon::signals
