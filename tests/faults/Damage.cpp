#include "tests/faults/Damage.h"

#include <random>

namespace quillon::test {

std::vector<Damage> damages(std::size_t size, const Trial& trial) {
  constexpr std::size_t sector = 512;
  const auto step = trial.isShort() ? size / 16 + 1 : 1;
  std::vector<Damage> all;
  for (std::size_t length = 0; length < size; length += step) {
    all.push_back(
        {"cut to " + std::to_string(length), [length](std::string bytes) { return bytes.substr(0, length); }});
  }
  std::mt19937 random(1);
  for (std::size_t place = 0; place < size; place += step) {
    const char bit = static_cast<char>(1 << random() % 8);
    all.push_back({"byte " + std::to_string(place), [place, bit](std::string bytes) {
                     bytes[place] = static_cast<char>(bytes[place] ^ bit);
                     return bytes;
                   }});
  }
  for (std::size_t place = 0; place < size; place += sector) {
    all.push_back({"zeroed at " + std::to_string(place), [place](std::string bytes) {
                     for (std::size_t i = place; i < std::min(place + sector, bytes.size()); ++i) bytes[i] = '\0';
                     return bytes;
                   }});
  }
  for (int seed = 0; seed < trial.rounds(200, 10); ++seed) {
    all.push_back({"seed " + std::to_string(seed), [seed](std::string bytes) {
                     std::mt19937 flips(static_cast<unsigned>(seed));
                     // The first hundred bytes are a header, where a flip does most: they get their share.
                     const std::size_t range = seed % 3 == 0 ? std::min<std::size_t>(100, bytes.size()) : bytes.size();
                     for (int left = 2 + seed % 4; left > 0; --left) {
                       char& byte = bytes[flips() % range];
                       byte = static_cast<char>(byte ^ (1 << flips() % 8));
                     }
                     return bytes;
                   }});
  }
  return all;
}

Seen seen(World& world, std::string stored) {
  const auto status = world.sdk->getStatus();
  return {.status = status == SDKStatus::ready      ? "ready"
                    : status == SDKStatus::fetching ? "fetching"
                                                    : "unavailable",
          .log = world.log(),
          .stored = std::move(stored)};
}

}  // namespace quillon::test
