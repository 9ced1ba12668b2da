#include "proof/Signature/Jws.h"

#include "proof/Json/CanonicalJson.h"
#include "proof/Json/UntrustedJson.h"
#include "proof/Signature/Base64Url.h"

namespace quillon::proof {
namespace {

constexpr std::size_t longestJws = 4096;

}  // namespace

std::expected<std::string, std::string> detachedJws(std::string_view payload, const SigningKey& key) {
  const std::string header =
      base64Url(canonicalJson(boost::json::object{{"alg", "EdDSA"}, {"jwk", key.publicKey().jwk()}}));
  const auto signature = key.sign(header + '.' + base64Url(payload));
  if (!signature) return std::unexpected(signature.error());
  return header + ".." + base64Url({reinterpret_cast<const char*>(signature->data()), signature->size()});
}

std::expected<PublicKey, std::string> signerOf(std::string_view payload, std::string_view jws) {
  const auto dots = jws.find("..");
  if (jws.size() > longestJws || dots == std::string_view::npos) return std::unexpected("is no detached JWS");
  const auto header = fromBase64Url(jws.substr(0, dots));
  const auto signature = fromBase64Url(jws.substr(dots + 2));
  if (!header || !signature) return std::unexpected("is no base64url");
  const auto read = readUntrustedJson(*header);
  const auto* const members = read ? read->if_object() : nullptr;
  const auto* const algorithm = members != nullptr ? members->if_contains("alg") : nullptr;
  const auto* const jwk = members != nullptr ? members->if_contains("jwk") : nullptr;
  if (algorithm == nullptr || *algorithm != "EdDSA" || jwk == nullptr || members->size() != 2) {
    return std::unexpected("has another header than {\"alg\":\"EdDSA\",\"jwk\":...}");
  }
  const auto key = PublicKey::fromJwk(*jwk);
  if (!key) return std::unexpected("has no Ed25519 key in its header");
  if (!key->verifies(std::string(jws.substr(0, dots)) + '.' + base64Url(payload), *signature)) {
    return std::unexpected("does not hold: what it signs was changed");
  }
  return *key;
}

}  // namespace quillon::proof
