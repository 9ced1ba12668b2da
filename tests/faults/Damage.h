// What happens to the bytes of a file that nobody wrote.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "tests/faults/Row.h"
#include "tests/support/World.h"

namespace quillon::test {

// Every length that the file can be cut to, each byte with one bit changed, sectors zeroed, and bits changed in several
// places at random; of a short trial, a sample of each.
void forEachDamage(const std::string& bytes, const Trial& trial,
                   const std::function<void(const std::string& name, const std::string& damaged)>& visit);

// What a user of this world sees at the moment; of what is stored the decision on the first purpose, unless it is
// given.
Seen seen(World& world, std::optional<std::string> stored = std::nullopt);

}  // namespace quillon::test
