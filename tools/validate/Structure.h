// Whether a document has the form of a configuration.
#pragma once

#include "core/Json/JsonType.h"
#include "tools/document/Document.h"
#include "tools/validate/Finding.h"

namespace quillon::tools {

// Tells all that decode() refuses, of which it tells the first, and the keys that it does not know, which it skips.
void checkStructure(const Document& document, const JsonType& type, Findings& findings);

}  // namespace quillon::tools
