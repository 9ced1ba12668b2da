// The built-in labels, one file per language in the folder languages/.
#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <string_view>

#include "ui/Common/Labels/Labels.h"

namespace quillon {

struct LabelLanguage {
  std::string_view code;                                 // lower case, such as "de" or "zh-hant"
  std::array<std::string_view, labelKeys.size()> texts;  // in the order of Label

  constexpr std::string_view text(Label label) const { return texts.at(static_cast<std::size_t>(label)); }
};

[[nodiscard]] std::span<const LabelLanguage> labelLanguages();
[[nodiscard]] const LabelLanguage& englishLabels();

// The next more general code: "zh-hant" for "zh-hant-tw"; empty if there is none.
[[nodiscard]] constexpr std::string_view parentLanguage(std::string_view code) {
  const auto end = code.rfind('-');
  return code.substr(0, end == std::string_view::npos ? 0 : end);
}

// The labels for a user's language, such as "pt-br" or "zh-tw", ignoring case; null if there are none.
[[nodiscard]] const LabelLanguage* labelLanguage(std::string_view language);

}  // namespace quillon
