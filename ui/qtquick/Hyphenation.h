// Hyphenation.
#pragma once

#include <QString>

namespace quillon {

// Inserts soft hyphens into a word; returns it unchanged if no patterns for the language are installed. Main thread
// only. Loads a language's patterns on first use, which takes some tens of milliseconds.
[[nodiscard]] QString hyphenated(const QString& word, const QString& language);

}  // namespace quillon
