#include "ui/Common/Labels/Languages.h"

#include <algorithm>
#include <string>
#include <utility>

#include "core/Text/Ascii.h"

namespace quillon {
namespace {

// Aliases of our language codes: regions whose script differs from the language's most common one, other codes for
// Norwegian, and retired codes.
constexpr std::pair<std::string_view, std::string_view> aliases[] = {
    {"zh", "zh-hans"},  {"zh-tw", "zh-hant"}, {"zh-hk", "zh-hant"}, {"zh-mo", "zh-hant"},
    {"yue", "zh-hant"}, {"no", "nb"},         {"nn", "nb"},         {"iw", "he"},
};

}  // namespace

const LabelLanguage& englishLabels() {
  return *labelLanguage("en");
}

const LabelLanguage* labelLanguage(std::string_view language) {
  std::string lower;
  for (const char c : language) lower += c == '_' ? '-' : lowerCase(c);
  const auto ours = labelLanguages();
  for (std::string_view code = lower; !code.empty(); code = parentLanguage(code)) {
    const auto* const alias = std::ranges::find(aliases, code, &std::pair<std::string_view, std::string_view>::first);
    const std::string_view known = alias == std::end(aliases) ? code : alias->second;
    const auto found = std::ranges::find(ours, known, &LabelLanguage::code);
    if (found != ours.end()) return &*found;
  }
  return nullptr;
}

}  // namespace quillon
