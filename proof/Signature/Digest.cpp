#include "proof/Signature/Digest.h"

#include <nettle/sha2.h>

namespace quillon::proof {

Digest digestOf(std::string_view bytes) {
  sha256_ctx context;
  sha256_init(&context);
  sha256_update(&context, bytes.size(), reinterpret_cast<const std::uint8_t*>(bytes.data()));
  Digest digest;
  sha256_digest(&context, digest.size(), digest.data());
  return digest;
}

}  // namespace quillon::proof
