// Chance: for identifiers, and so that devices do not march in step.
#pragma once

#include <cstdint>

namespace quillon {

// Thread-safe. Never throws.
class RandomSource {
 public:
  virtual ~RandomSource() = default;

  // 64 bits, each of them as likely set as not, which nobody outside can foresee.
  virtual std::uint64_t next() = 0;
};

}  // namespace quillon
