// What stands around every public operation, which never throws.
#pragma once

#include <utility>

namespace quillon {

// Runs the operation. What escapes it is want of memory or of the system's resources, which nobody up here can mend;
// the answer is `otherwise` then, and never a consent.
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
