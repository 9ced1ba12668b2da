// Checks that a document has the structure of a configuration.
#pragma once

#include "core/Json/JsonType.h"
#include "tools/document/Document.h"
#include "tools/validate/Finding.h"

namespace quillon::tools {

// Reports all errors that decode() would reject the document for, not just the first one, and unknown keys, which
// decode() ignores.
void checkStructure(const Document& document, const JsonType& type, Findings& findings);

}  // namespace quillon::tools
