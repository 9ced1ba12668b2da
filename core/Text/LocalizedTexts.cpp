#include "core/Text/LocalizedTexts.h"

#include <algorithm>

namespace quillon {

std::string textIn(std::string_view language, const LocalizedText& text) {
  for (const std::string_view code : {language, std::string_view("en")}) {
    if (const auto entry = text.find(code); entry != text.end() && !entry->second.empty()) return entry->second;
  }
  const auto any = std::ranges::find_if(text, [](const auto& entry) { return !entry.second.empty(); });
  return any == text.end() ? std::string() : any->second;
}

}  // namespace quillon
