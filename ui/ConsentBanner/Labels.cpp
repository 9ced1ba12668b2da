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

}  // namespace quillon
