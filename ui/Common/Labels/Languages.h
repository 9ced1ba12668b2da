// The labels in the languages that we have, a file of the folder languages/ each.
#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <string_view>

#include "ui/Common/Labels/Labels.h"

namespace quillon {

struct LabelLanguage {
  std::string_view code;                                 // in lower case, such as "de" or "zh-hant"
  std::array<std::string_view, labelKeys.size()> texts;  // in the order of Label

  constexpr std::string_view text(Label label) const { return texts.at(static_cast<std::size_t>(label)); }
};

[[nodiscard]] std::span<const LabelLanguage> labelLanguages();
[[nodiscard]] const LabelLanguage& englishLabels();

// The next more general one of a language code: "zh-hant" of "zh-hant-tw"; empty when there is none.
[[nodiscard]] constexpr std::string_view parentLanguage(std::string_view code) {
  const auto end = code.rfind('-');
  return code.substr(0, end == std::string_view::npos ? 0 : end);
}

// The one for a user's language, such as "pt-br" or "zh-tw", in any case; null when there is none.
[[nodiscard]] const LabelLanguage* labelLanguage(std::string_view language);

}  // namespace quillon
