// Catches exceptions of foreign code.
#pragma once

#include <utility>

namespace quillon {

// Runs the call and discards its exceptions.
template <class Call>
void contained(Call&& call) noexcept {
  try {
    std::forward<Call>(call)();
  } catch (...) {  // NOLINT(bugprone-empty-catch): nothing can be done here
  }
}

}  // namespace quillon
