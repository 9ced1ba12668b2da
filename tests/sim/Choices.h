// Pseudo-random choices derived from a seed.
#pragma once

#include <cstdint>

namespace quillon::sim {

// SplitMix64: unlike the standard distributions, identical on every machine and with every library.
class Choices {
 public:
  explicit Choices(std::uint64_t seed) : state_(seed) {}

  std::uint64_t next() {
    std::uint64_t mixed = state_ += 0x9e3779b97f4a7c15;
    mixed = (mixed ^ mixed >> 30) * 0xbf58476d1ce4e5b9;
    mixed = (mixed ^ mixed >> 27) * 0x94d049bb133111eb;
    return mixed ^ mixed >> 31;
  }
  // From 0 to limit - 1; limit is above 0.
  std::size_t below(std::size_t limit) { return static_cast<std::size_t>(next() % limit); }
  bool oneIn(std::size_t count) { return below(count) == 0; }

 private:
  std::uint64_t state_;
};

}  // namespace quillon::sim
