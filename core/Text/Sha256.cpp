#include "core/Text/Sha256.h"

#include <nettle/sha2.h>

#include "core/Text/Ascii.h"

namespace quillon {

Sha256 sha256Bytes(std::string_view bytes) {
  sha256_ctx context;
  sha256_init(&context);
  sha256_update(&context, bytes.size(), reinterpret_cast<const std::uint8_t*>(bytes.data()));
  Sha256 digest{};
  sha256_digest(&context, digest.size(), digest.data());
  return digest;
}

std::string sha256(std::string_view bytes) {
  const Sha256 digest = sha256Bytes(bytes);
  std::string text;
  text.reserve(2 * digest.size());
  for (const auto byte : digest) appendHex(text, static_cast<char>(byte));
  return text;
}

bool isSha256(std::string_view text) noexcept {
  return text.size() == std::size_t{2} * SHA256_DIGEST_SIZE &&
         text.find_first_not_of("0123456789abcdef") == std::string_view::npos;
}

}  // namespace quillon
