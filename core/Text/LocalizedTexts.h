// Selects the language of a localized text.
#pragma once

#include <string>
#include <string_view>

#include "quillon/BannerConfig.h"

namespace quillon {

// The next more general one of a language code: "zh-hant" of "zh-hant-tw"; empty when there is none.
[[nodiscard]] constexpr std::string_view parentLanguage(std::string_view code) {
  const auto end = code.rfind('-');
  return code.substr(0, end == std::string_view::npos ? 0 : end);
}

// The text in the language or the next more general one that it has, else in English, else the first one; empty when
// there is none. Empty entries are skipped.
[[nodiscard]] std::string textIn(std::string_view language, const LocalizedText& text);

}  // namespace quillon
