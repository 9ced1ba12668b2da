#include "proof/Signature/Base64Url.h"

#include <nettle/base64.h>

#include <cstdint>

namespace quillon::proof {

std::string base64Url(std::string_view bytes) {
  base64_encode_ctx context;
  base64url_encode_init(&context);
  std::string text(BASE64_ENCODE_LENGTH(bytes.size()) + BASE64_ENCODE_FINAL_LENGTH, '\0');
  auto length =
      base64_encode_update(&context, text.data(), bytes.size(), reinterpret_cast<const std::uint8_t*>(bytes.data()));
  length += base64_encode_final(&context, text.data() + length);
  text.resize(length);
  while (text.ends_with('=')) text.pop_back();
  return text;
}

std::optional<std::string> fromBase64Url(std::string_view text) {
  base64_decode_ctx context;
  base64url_decode_init(&context);
  std::string bytes(BASE64_DECODE_LENGTH(text.size()), '\0');
  std::size_t length = bytes.size();
  if (!base64_decode_update(&context, &length, reinterpret_cast<std::uint8_t*>(bytes.data()), text.size(),
                            text.data())) {
    return std::nullopt;
  }
  bytes.resize(length);
  // Rejects white space, padding and non-zero unused bits, with which one signature would have several encodings.
  if (base64Url(bytes) != text) return std::nullopt;
  return bytes;
}

}  // namespace quillon::proof
