// Signatures beside what they sign: JWS with detached content (RFC 7515, appendix F), EdDSA, and the key in the header.
#pragma once

#include <expected>
#include <string>
#include <string_view>

#include "proof/Signature/Keys.h"

namespace quillon::proof {

// "HEADER..SIGNATURE"; an error when the key does not sign.
[[nodiscard]] std::expected<std::string, std::string> detachedJws(std::string_view payload, const SigningKey& key);
// The key that signed the payload, which proves nothing about whose it is; or why none did. Headers that ask for
// anything but what detachedJws() makes are refused.
[[nodiscard]] std::expected<PublicKey, std::string> signerOf(std::string_view payload, std::string_view jws);

}  // namespace quillon::proof
