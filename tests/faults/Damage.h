// Damage to a file's bytes.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "tests/faults/Row.h"
#include "tests/support/World.h"

namespace quillon::test {

// Truncation to every length, a flipped bit in each byte, zeroed sectors, and random flips in several places; in a
// short trial a sample of each.
void forEachDamage(const std::string& bytes, const Trial& trial,
                   const std::function<void(const std::string& name, const std::string& damaged)>& visit);

// What a user sees at the moment; by default the stored decision on the first purpose.
Seen seen(World& world, std::optional<std::string> stored = std::nullopt);

}  // namespace quillon::test
