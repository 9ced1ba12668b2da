// The bits behind a text in base64url, from the first character's highest bit on.
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
  // Refuses a text with a character outside the alphabet, padding included.
  [[nodiscard]] static std::expected<BitReader, std::string> over(std::string_view text);

  // The next @p count bits, at most 64, as a number with the first bit highest. Past the end it is 0 and isPastEnd()
  // is true from then on.
  std::uint64_t read(unsigned count);
  [[nodiscard]] bool isPastEnd() const noexcept { return isPastEnd_; }
  [[nodiscard]] std::size_t left() const noexcept { return size_ - next_; }
  // Whether nothing but zeros is left.
  [[nodiscard]] bool hasOnlyPadding() const;

 private:
  std::vector<std::uint8_t> bytes_;
  std::size_t size_ = 0;  // in bits, as next_
  std::size_t next_ = 0;
  bool isPastEnd_ = false;
};

}  // namespace quillon::signals
