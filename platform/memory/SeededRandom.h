// Reproducible random numbers from a seed, for tests and simulations.
#pragma once

#include <mutex>
#include <random>

#include "platform/RandomSource.h"

namespace quillon {

class SeededRandom : public RandomSource {
 public:
  explicit SeededRandom(std::uint64_t seed = 1) : engine_(seed) {}

  std::uint64_t next() override {
    const std::scoped_lock lock(mutex_);
    return engine_();
  }

 private:
  std::mutex mutex_;
  std::mt19937_64 engine_;
};

}  // namespace quillon
