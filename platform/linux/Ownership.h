// Which file owners are trusted.
#pragma once

#include <unistd.h>

namespace quillon {

// Another user's file may contain forged consents. Root is trusted: it can write any file anyway, and often owns files
// of users.
[[nodiscard]] inline bool isTrustedOwner(uid_t owner) noexcept {
  const uid_t self = ::geteuid();
  return owner == self || owner == 0 || self == 0;
}

}  // namespace quillon
