// Ed25519 (RFC 8032), and its public keys as JSON Web Keys (RFC 8037).
#pragma once

#include <array>
#include <boost/json/object.hpp>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quillon::proof {

using Signature = std::array<std::uint8_t, 64>;

struct PublicKey {
  std::array<std::uint8_t, 32> bytes{};

  [[nodiscard]] static std::optional<PublicKey> fromJwk(const boost::json::value& jwk);
  [[nodiscard]] boost::json::object jwk() const;
  // What names the key: its thumbprint (RFC 7638) in base64url.
  [[nodiscard]] std::string thumbprint() const;
  [[nodiscard]] bool verifies(std::string_view message, std::string_view signature) const;

  bool operator==(const PublicKey&) const = default;
};

// Wiped when destroyed.
class SigningKey {
 public:
  using Secret = std::array<std::uint8_t, 32>;

  explicit SigningKey(const Secret& secret);
  ~SigningKey();
  SigningKey(const SigningKey&) = delete;
  SigningKey& operator=(const SigningKey&) = delete;

  [[nodiscard]] const PublicKey& publicKey() const { return publicKey_; }
  [[nodiscard]] Signature sign(std::string_view message) const;

 private:
  Secret secret_;
  PublicKey publicKey_;
};

}  // namespace quillon::proof
