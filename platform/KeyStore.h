// Stores the secret of the device's signing key.
#pragma once

#include <array>
#include <cstdint>
#include <expected>
#include <string>
#include <string_view>

namespace quillon {

// An Ed25519 key (RFC 8032). Thread-safe. Never throws; errors are texts for the log.
class Signer {
 public:
  using PublicKey = std::array<std::uint8_t, 32>;
  using Signature = std::array<std::uint8_t, 64>;

  virtual ~Signer() = default;

  virtual std::expected<PublicKey, std::string> publicKey() = 0;
  // The caller verifies the signature against publicKey(), and discards an invalid one.
  virtual std::expected<Signature, std::string> sign(std::string_view message) = 0;
};

// Thread-safe. Never throws. A port may use a secure element or the desktop's keyring; an application may provide its
// own key.
class KeyStore {
 public:
  using Secret = std::array<std::uint8_t, 32>;

  virtual ~KeyStore() = default;

  // For a key that signs without revealing its secret; secret() is then not called. Null: secret() is the key. Valid as
  // long as the store.
  virtual Signer* signer() { return nullptr; }

  // The application's secret, the same in all its processes; durable on return. Created from unpredictable bits if
  // there is none. The error is a text for the log; a secret that cannot be read is never replaced.
  virtual std::expected<Secret, std::string> secret() = 0;
  // Deletes the secret, so that signatures before and after cannot be linked.
  virtual std::expected<void, std::string> forget() = 0;
};

}  // namespace quillon
