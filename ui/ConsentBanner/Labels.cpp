#include "ui/ConsentBanner/Labels.h"

namespace quillon {

std::string labelText(Label label, const std::optional<BannerConfig>& banner, std::string_view language) {
  const auto& [key, english] = labelTexts.at(static_cast<std::size_t>(label));
  if (banner && banner->translations) {
    const auto texts = banner->translations->find(language);
    if (texts != banner->translations->end() && texts->second) {
      const auto text = texts->second->find(key);
      if (text != texts->second->end() && !text->second.empty()) return text->second;
    }
  }
  return std::string(english);
}

std::string joined(Label pattern, std::string first, std::string second, const std::optional<BannerConfig>& banner,
                   std::string_view language) {
  if (first.empty() || second.empty()) return first.empty() ? std::move(second) : std::move(first);
  std::string form = labelText(pattern, banner, language);
  if (!form.contains("%1") || !form.contains("%2")) {
    form = labelTexts.at(static_cast<std::size_t>(pattern)).english;
  }
  std::string result;
  for (std::size_t i = 0; i < form.size(); ++i) {
    const std::string_view place = std::string_view(form).substr(i, 2);
    if (place != "%1" && place != "%2") {
      // The text may bring the full stop of the pattern along.
      if (form[i] != '.' || !result.ends_with('.')) result += form[i];
      continue;
    }
    result += place == "%1" ? first : second;
    ++i;
  }
  return result;
}

}  // namespace quillon
