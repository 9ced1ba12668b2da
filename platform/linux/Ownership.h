// Which file owners are trusted.
#pragma once

#include <unistd.h>

namespace quillon {

// Another user's file may contain consents that nobody gave. The administrator could write any file anyway, and often
// owns other users' files.
[[nodiscard]] inline bool isTrustedOwner(uid_t owner) noexcept {
  const uid_t self = ::geteuid();
  return owner == self || owner == 0 || self == 0;
}

}  // namespace quillon
