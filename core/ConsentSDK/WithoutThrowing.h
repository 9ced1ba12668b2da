// The exception barrier of the public operations.
#pragma once

#include <utility>

namespace quillon {

// Runs the operation; returns `otherwise`, which is never a consent, when it throws. Only exhausted memory or system
// resources throw here, which no caller can handle.
template <class Operation, class Answer>
[[nodiscard]] Answer withoutThrowing(Operation operation, Answer otherwise) noexcept {
  try {
    return operation();
  } catch (...) {
    return otherwise;
  }
}

template <class Operation>
void withoutThrowing(Operation operation) noexcept {
  try {
    operation();
  } catch (...) {  // NOLINT(bugprone-empty-catch): see above
  }
}

}  // namespace quillon
