// Random numbers from the operating system.
#pragma once

#include <random>

#include "platform/RandomSource.h"

namespace quillon {

class SystemRandom : public RandomSource {
 public:
  std::uint64_t next() override {
    // One device per thread: it is not thread-safe.
    thread_local std::random_device device;
    return std::uint64_t{device()} << 32 | device();
  }
};

}  // namespace quillon
