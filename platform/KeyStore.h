// Keeps the secret with which the device signs.
#pragma once

#include <array>
#include <cstdint>
#include <expected>
#include <string>

namespace quillon {

// Thread-safe. Never throws. A port may have a secure element seal the secret, or the desktop's keyring keep it.
class KeyStore {
 public:
  using Secret = std::array<std::uint8_t, 32>;

  virtual ~KeyStore() = default;

  // The application's secret, the same in all its processes. Made of unpredictable bits when there is none, and durable
  // on return. The error is a text for the log; a secret that cannot be read is never replaced.
  virtual std::expected<Secret, std::string> secret() = 0;
  // Deletes the secret, so that the next one tells nothing about whose the last one was.
  virtual std::expected<void, std::string> forget() = 0;
};

}  // namespace quillon
