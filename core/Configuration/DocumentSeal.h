// Detects damage to a stored document. A flipped bit can turn opt-in into opt-out and still leave a valid document.
#pragma once

#include <string>
#include <string_view>

namespace quillon {

// The document followed by its checksum, encoded as white space so that every JSON reader sees only the document.
[[nodiscard]] std::string sealed(std::string document);

// False when document and seal disagree. A document without a seal, not written by the SDK, counts as intact.
[[nodiscard]] bool sealIsIntact(std::string_view bytes);

}  // namespace quillon
