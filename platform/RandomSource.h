// Random numbers, for identifiers and to spread the timing of devices.
#pragma once

#include <cstdint>

namespace quillon {

// Thread-safe. Never throws.
class RandomSource {
 public:
  virtual ~RandomSource() = default;

  // 64 uniformly random, unpredictable bits.
  virtual std::uint64_t next() = 0;
};

}  // namespace quillon
