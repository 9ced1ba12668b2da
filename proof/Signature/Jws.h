// Detached signatures: JWS with detached content (RFC 7515, appendix F), EdDSA, with the public key in the header.
#pragma once

#include <expected>
#include <string>
#include <string_view>

#include "proof/Signature/Keys.h"

namespace quillon::proof {

// "HEADER..SIGNATURE"; an error if signing fails.
[[nodiscard]] std::expected<std::string, std::string> detachedJws(std::string_view payload, const SigningKey& key);
// The key that signed the payload, which does not prove who owns it; or the reason for the rejection. Accepts only
// headers that detachedJws() produces.
[[nodiscard]] std::expected<PublicKey, std::string> signerOf(std::string_view payload, std::string_view jws);

}  // namespace quillon::proof
