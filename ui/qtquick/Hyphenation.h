// Where words of a language may be divided.
#pragma once

#include <QString>

namespace quillon {

// The word with soft hyphens where the language divides it; as it is when the machine has no patterns for the language.
// For the main thread only. The patterns of a language are read when its first word is asked for, which takes some tens
// of milliseconds.
[[nodiscard]] QString hyphenated(const QString& word, const QString& language);

}  // namespace quillon
