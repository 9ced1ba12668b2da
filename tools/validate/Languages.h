// The languages of a configuration.
#pragma once

#include <functional>
#include <set>
#include <string_view>

#include "core/Configuration/ConfiguredTexts.h"

namespace quillon::tools {

using Languages = std::set<std::string_view>;

// The languages of all texts except labels. The views refer to the configuration.
[[nodiscard]] inline Languages languagesOf(const MainConfiguration& configuration) {
  Languages languages;
  forEachText(configuration, NoPath(), [&languages](NoPath, const LocalizedText& text) {
    for (const auto& [language, words] : text) languages.insert(language);
  });
  return languages;
}

}  // namespace quillon::tools
