// Reads bits from base64url text, most significant bit first.
#pragma once

#include <cstddef>
#include <cstdint>
#include <expected>
#include <string>
#include <string_view>
#include <vector>

namespace quillon::signals {

class BitReader {
 public:
  // Rejects characters outside the alphabet, padding included.
  [[nodiscard]] static std::expected<BitReader, std::string> over(std::string_view text);

  // The next @p count bits, at most 64, as a big-endian number. Past the end it returns 0 and isPastEnd() becomes true.
  std::uint64_t read(unsigned count);
  [[nodiscard]] bool isPastEnd() const noexcept { return isPastEnd_; }
  [[nodiscard]] std::size_t left() const noexcept { return size_ - next_; }
  // Whether all remaining bits are zero.
  [[nodiscard]] bool hasOnlyPadding() const;

 private:
  std::vector<std::uint8_t> bytes_;
  std::size_t size_ = 0;  // in bits, as next_
  std::size_t next_ = 0;
  bool isPastEnd_ = false;
};

}  // namespace quillon::signals
