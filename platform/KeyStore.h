// Keeps the secret with which the device signs.
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
  // Not used when it does not hold for the public key.
  virtual std::expected<Signature, std::string> sign(std::string_view message) = 0;
};

// Thread-safe. Never throws. A port may have a secure element seal the secret, or the desktop's keyring keep it; an
// application may give a key of its own.
class KeyStore {
 public:
  using Secret = std::array<std::uint8_t, 32>;

  virtual ~KeyStore() = default;

  // The key itself, where it signs without handing out its secret: then nobody asks for that. Null: the secret is the
  // key. Valid as long as the store.
  virtual Signer* signer() { return nullptr; }

  // The application's secret, the same in all its processes. Made of unpredictable bits when there is none, and durable
  // on return. The error is a text for the log; a secret that cannot be read is never replaced.
  virtual std::expected<Secret, std::string> secret() = 0;
  // Deletes the secret, so that the next one tells nothing about whose the last one was.
  virtual std::expected<void, std::string> forget() = 0;
};

}  // namespace quillon
