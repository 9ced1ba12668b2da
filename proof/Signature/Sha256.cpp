#include "proof/Signature/Sha256.h"

#include <nettle/sha2.h>

namespace quillon::proof {

Sha256 sha256(std::string_view bytes) {
  sha256_ctx context;
  sha256_init(&context);
  sha256_update(&context, bytes.size(), reinterpret_cast<const std::uint8_t*>(bytes.data()));
  Sha256 digest;
  sha256_digest(&context, digest.size(), digest.data());
  return digest;
}

std::string sha256Text(std::string_view bytes) {
  constexpr std::string_view digits = "0123456789abcdef";
  std::string text;
  for (const auto byte : sha256(bytes)) {
    text += digits[byte >> 4];
    text += digits[byte & 15];
  }
  return text;
}

bool isSha256Text(std::string_view text) {
  return text.size() == 64 && text.find_first_not_of("0123456789abcdef") == std::string_view::npos;
}

}  // namespace quillon::proof
