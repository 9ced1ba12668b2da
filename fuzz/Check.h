// What a fuzz target claims about every input, and the types that it takes it in.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace quillon::fuzz {

// Stops the process, so that the input is kept, when the claim does not hold.
inline void check(bool holds, const char* claim) {
  if (holds) return;
  std::fprintf(stderr, "does not hold: %s\n", claim);
  std::abort();
}

}  // namespace quillon::fuzz
