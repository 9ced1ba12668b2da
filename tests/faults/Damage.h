// What happens to the bytes of a file that nobody wrote.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "tests/faults/Row.h"
#include "tests/support/World.h"

namespace quillon::test {

struct Damage {
  std::string name;
  std::function<std::string(std::string bytes)> done;
};

// Every length that the file can be cut to, each byte with one bit changed, sectors zeroed, and bits changed in several
// places at random; of a short trial, a sample of each.
std::vector<Damage> damages(std::size_t size, const Trial& trial);

// What a user of this world sees at the moment.
Seen seen(World& world, std::string stored);

}  // namespace quillon::test
