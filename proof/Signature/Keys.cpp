#include "proof/Signature/Keys.h"

#include <nettle/eddsa.h>
#include <string.h>

#include <algorithm>

#include "core/Text/Sha256.h"
#include "proof/Json/CanonicalJson.h"
#include "proof/Signature/Base64Url.h"

namespace quillon::proof {
namespace {

namespace json = boost::json;

const std::uint8_t* bytesOf(std::string_view text) {
  return reinterpret_cast<const std::uint8_t*>(text.data());
}

template <class Bytes>
std::string_view textOf(const Bytes& bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

bool isText(const json::object& object, std::string_view key, std::string_view text) {
  const auto* value = object.if_contains(key);
  return value != nullptr && value->is_string() && value->get_string() == text;
}

}  // namespace

std::optional<PublicKey> PublicKey::fromJwk(const json::value& jwk) {
  const auto* const object = jwk.if_object();
  if (object == nullptr || !isText(*object, "kty", "OKP") || !isText(*object, "crv", "Ed25519")) return std::nullopt;
  const auto* const x = object->if_contains("x");
  if (x == nullptr || !x->is_string()) return std::nullopt;
  const auto read = fromBase64Url(x->get_string());
  PublicKey key;
  if (!read || read->size() != key.bytes.size()) return std::nullopt;
  std::ranges::copy(*read, key.bytes.begin());
  return key;
}

json::object PublicKey::jwk() const {
  return {{"kty", "OKP"}, {"crv", "Ed25519"}, {"x", base64Url(textOf(bytes))}};
}

std::string PublicKey::thumbprint() const {
  return base64Url(textOf(sha256Bytes(canonicalJson(jwk()))));
}

bool PublicKey::verifies(std::string_view message, std::string_view signature) const {
  return signature.size() == ED25519_SIGNATURE_SIZE &&
         ed25519_sha512_verify(bytes.data(), message.size(), bytesOf(message), bytesOf(signature)) == 1;
}

SigningKey::SigningKey(const KeyStore::Secret& secret) : secret_(secret) {
  ed25519_sha512_public_key(publicKey_.bytes.data(), secret_.data());
}

SigningKey::~SigningKey() {
  explicit_bzero(secret_.data(), secret_.size());
}

std::expected<Signer::Signature, std::string> SigningKey::sign(std::string_view message) const {
  if (signer_ != nullptr) {
    auto signature = signer_->sign(message);
    if (signature && !publicKey_.verifies(message, textOf(*signature))) {
      return std::unexpected("the key made a signature that does not hold");
    }
    return signature;
  }
  Signer::Signature signature;
  ed25519_sha512_sign(publicKey_.bytes.data(), secret_.data(), message.size(), bytesOf(message), signature.data());
  return signature;
}

}  // namespace quillon::proof
