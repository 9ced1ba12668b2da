#include "ui/Common/Labels/Labels.h"

#include <algorithm>

#include "core/Text/Ascii.h"
#include "platform/ScreenServices.h"
#include "ui/Common/Labels/Languages.h"

namespace quillon {
namespace {

LabelText ownText(Label label, std::string_view language) {
  const LabelLanguage* own = labelLanguage(language);
  if (!own) own = &englishLabels();
  return {std::string(own->text(label)), std::string(own->code)};
}

bool isPattern(std::string_view text) {
  return text.contains("%1") && text.contains("%2");
}

constexpr std::string_view fullStops[] = {".", "。", "।"};

}  // namespace

std::string languageOfLabels(const ScreenServices& sdk) {
  std::string code;
  if (const auto options = sdk.options(); options && options->languageCode) code = options->languageCode->text();
  if (const auto preferred = sdk.locale().preferredLanguages(); code.empty() && !preferred.empty()) {
    code = lowerCase(preferred.front());
  }
  std::ranges::replace(code, '_', '-');
  std::string language = sdk.language();
  return code.starts_with(language + '-') ? code : language;
}

LabelText labelText(Label label, const std::optional<BannerConfig>& banner, std::string_view language) {
  if (!banner || !banner->translations) return ownText(label, language);
  const std::string_view key = labelKeys.at(static_cast<std::size_t>(label));
  for (std::string_view code = language; !code.empty(); code = parentLanguage(code)) {
    const auto texts = banner->translations->find(code);
    if (texts == banner->translations->end() || !texts->second) continue;
    const auto text = texts->second->find(key);
    if (text != texts->second->end() && !text->second.empty()) return {text->second, std::string(code)};
  }
  return ownText(label, language);
}

std::string joined(Label pattern, std::string first, std::string second, const std::optional<BannerConfig>& banner,
                   std::string_view language) {
  if (first.empty() || second.empty()) return first.empty() ? std::move(second) : std::move(first);
  std::string form = labelText(pattern, banner, language).text;
  if (!isPattern(form)) form = ownText(pattern, language).text;
  std::string result;
  for (std::string_view rest = form; !rest.empty();) {
    if (rest.starts_with("%1") || rest.starts_with("%2")) {
      result += rest[1] == '1' ? first : second;
      rest.remove_prefix(2);
      continue;
    }
    // The text may already end in the pattern's full stop.
    const auto* const stop = std::ranges::find_if(
        fullStops, [&](std::string_view mark) { return rest.starts_with(mark) && result.ends_with(mark); });
    if (stop != std::end(fullStops)) {
      rest.remove_prefix(stop->size());
      continue;
    }
    result += rest.front();
    rest.remove_prefix(1);
  }
  return result;
}

}  // namespace quillon
