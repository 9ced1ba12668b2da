// Writes bits as base64url text.
#pragma once

#include <cstdint>
#include <string>
#include <utility>

#include "signals/Bits/Base64Url.h"

namespace quillon::signals {

class BitWriter {
 public:
  // Appends the lowest @p count bits of @p value, at most 57, most significant bit first.
  void write(std::uint64_t value, unsigned count) {
    pending_ = pending_ << count | (value & ((std::uint64_t{1} << count) - 1));
    pendingBits_ += count;
    while (pendingBits_ >= 6) text_ += base64UrlDigits[pending_ >> (pendingBits_ -= 6) & 63];
  }

  // The text, zero-padded to a multiple of @p multiple bits, which must be divisible by six. Nothing may be written
  // afterwards.
  [[nodiscard]] std::string finish(unsigned multiple) && {
    if (pendingBits_ > 0) write(0, 6 - pendingBits_);
    text_.append((multiple / 6 - text_.size() % (multiple / 6)) % (multiple / 6), base64UrlDigits[0]);
    return std::move(text_);
  }

 private:
  std::string text_;
  std::uint64_t pending_ = 0;
  unsigned pendingBits_ = 0;  // fewer than six
};

}  // namespace quillon::signals
