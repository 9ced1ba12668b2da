// Tells a document that was damaged on disk from one that was written so: a changed bit can turn a law that asks for
// consent into one that takes it for given, and still be a valid document.
#pragma once

#include <string>
#include <string_view>

namespace quillon {

// The document followed by its checksum, in white space, so that every reader of JSON finds the document alone.
[[nodiscard]] std::string sealed(std::string document);

// False when the bytes are not what was sealed. A document without a seal, which somebody else wrote, counts as intact.
[[nodiscard]] bool sealIsIntact(std::string_view bytes);

}  // namespace quillon
