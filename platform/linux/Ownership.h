// Whose files are believed.
#pragma once

#include <unistd.h>

namespace quillon {

// What another user owns, that user may have written: consents that nobody gave. The administrator could do so anyway,
// and works on the files of others as a matter of course.
[[nodiscard]] inline bool isTrustedOwner(uid_t owner) noexcept {
  const uid_t self = ::geteuid();
  return owner == self || owner == 0 || self == 0;
}

}  // namespace quillon
