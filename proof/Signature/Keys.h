// Ed25519 (RFC 8032), and its public keys as JSON Web Keys (RFC 8037).
#pragma once

#include <boost/json/object.hpp>
#include <expected>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "platform/KeyStore.h"

namespace quillon::proof {

struct PublicKey {
  Signer::PublicKey bytes{};

  [[nodiscard]] static std::optional<PublicKey> fromJwk(const boost::json::value& jwk);
  [[nodiscard]] boost::json::object jwk() const;
  // The key's identifier: its thumbprint (RFC 7638) in base64url.
  [[nodiscard]] std::string thumbprint() const;
  [[nodiscard]] bool verifies(std::string_view message, std::string_view signature) const;

  bool operator==(const PublicKey&) const = default;
};

// A signing key: a secret in memory, wiped on destruction, or an external signer.
class SigningKey {
 public:
  explicit SigningKey(const KeyStore::Secret& secret);
  // `signer` must outlive this object.
  SigningKey(Signer& signer, const PublicKey& publicKey) : signer_(&signer), publicKey_(publicKey) {}
  ~SigningKey();
  SigningKey(const SigningKey&) = delete;
  SigningKey& operator=(const SigningKey&) = delete;

  [[nodiscard]] const PublicKey& publicKey() const { return publicKey_; }
  // The signature is verified against the public key, since an external signer is not trusted.
  [[nodiscard]] std::expected<Signer::Signature, std::string> sign(std::string_view message) const;

 private:
  Signer* const signer_ = nullptr;
  KeyStore::Secret secret_{};
  PublicKey publicKey_;
};

// Calls `use` with the store's key and returns its result, or the reason why there is no key.
template <class Use>
auto withKeyOf(KeyStore& store, const Use& use) -> decltype(use(std::declval<const SigningKey&>())) {
  if (Signer* const signer = store.signer()) {
    const auto publicKey = signer->publicKey();
    if (!publicKey) return std::unexpected(publicKey.error());
    return use(SigningKey(*signer, {*publicKey}));
  }
  const auto secret = store.secret();
  if (!secret) return std::unexpected(secret.error());
  return use(SigningKey(*secret));
}

}  // namespace quillon::proof
