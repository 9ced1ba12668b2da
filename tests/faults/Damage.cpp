#include "tests/faults/Damage.h"

#include <random>

namespace quillon::test {

void forEachDamage(const std::string& bytes, const Trial& trial,
                   const std::function<void(const std::string&, const std::string&)>& visit) {
  const auto size = bytes.size();
  const auto step = trial.isShort() ? size / 16 + 1 : 1;
  for (std::size_t length = 0; length < size; length += step) {
    visit("cut to " + std::to_string(length), bytes.substr(0, length));
  }
  std::mt19937 random(1);
  const auto flipBit = [&](char& byte) { byte = static_cast<char>(byte ^ (1 << random() % 8)); };
  for (std::size_t place = 0; place < size; place += step) {
    auto damaged = bytes;
    flipBit(damaged[place]);
    visit("byte " + std::to_string(place), damaged);
  }
  constexpr std::size_t sector = 512;
  for (std::size_t place = 0; place < size; place += sector) {
    const auto count = std::min(sector, size - place);
    visit("zeroed at " + std::to_string(place), std::string(bytes).replace(place, count, count, '\0'));
  }
  for (int round = 0; round < trial.rounds(200, 10); ++round) {
    auto damaged = bytes;
    // Every third round flips the header, the first hundred bytes, where flips do most harm.
    const auto range = round % 3 == 0 ? std::min<std::size_t>(100, size) : size;
    for (int left = 2 + round % 4; left > 0; --left) flipBit(damaged[random() % range]);
    visit("flips, round " + std::to_string(round), damaged);
  }
}

Seen seen(World& world, std::optional<std::string> stored) {
  const auto status = world.sdk->getStatus();
  return {.status = status == SDKStatus::ready      ? "ready"
                    : status == SDKStatus::fetching ? "fetching"
                                                    : "unavailable",
          .log = world.log(),
          .stored = stored ? *std::move(stored) : "1=" + world.text("1").value_or("nothing")};
}

}  // namespace quillon::test
