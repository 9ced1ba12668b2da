#include "proof/Check/SignedDocument.h"

#include "proof/Json/CanonicalJson.h"
#include "proof/Json/Members.h"
#include "proof/Json/UntrustedJson.h"
#include "proof/Signature/Base64Url.h"
#include "proof/Signature/Jws.h"

namespace quillon::proof {

std::optional<SignedDocument> checkSigned(std::string_view name, std::string_view document,
                                          const Expectations& expected, Findings& findings) {
  const std::string subject(name);
  auto read = readUntrustedJson(document);
  if (!read) {
    findings.fault(subject, "cannot be read: " + read.error());
    return std::nullopt;
  }
  auto* const members = read->if_object();
  auto* const content = members != nullptr ? members->if_contains(name) : nullptr;
  if (content == nullptr || !content->is_object()) {
    findings.fault(subject, "is no " + subject + " of ours");
    return std::nullopt;
  }
  if (members->size() > 2) findings.fault(subject, "has members beside it that nobody signed");
  SignedDocument result{.content = std::move(content->get_object()), .signer = std::nullopt};
  const auto signature = textIn(*members, "signature");
  if (!signature) {
    findings.fault("signature of the " + subject, "is missing");
    return result;
  }
  const auto signer = signerOf(canonicalJson(result.content), *signature);
  if (!signer) {
    findings.fault("signature of the " + subject, signer.error());
    return result;
  }
  result.signer = *signer;
  const auto thumbprint = signer->thumbprint();
  if (!expected.keyThumbprint.empty() && thumbprint != expected.keyThumbprint) {
    findings.fault("key", "the " + subject + " is signed by " + thumbprint + ", and not by " + expected.keyThumbprint);
  } else {
    findings.holds("signature of the " + subject, "by the key " + thumbprint);
  }
  return result;
}

std::string thumbprintOf(std::string_view key) {
  while (!key.empty() && (key.back() == '\n' || key.back() == '\r' || key.back() == ' ')) key.remove_suffix(1);
  if (key.size() == 43 && fromBase64Url(key)) return std::string(key);
  const auto read = readUntrustedJson(key);
  const auto known = read ? PublicKey::fromJwk(*read) : std::nullopt;
  return known ? known->thumbprint() : std::string();
}

}  // namespace quillon::proof
