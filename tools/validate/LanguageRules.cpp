#include <set>
#include <string_view>

#include "core/Configuration/ConfiguredTexts.h"
#include "tools/validate/Rules.h"
#include "ui/Common/Labels/Languages.h"

namespace quillon::tools {
namespace {

using Languages = std::set<std::string_view>;

Languages languagesOf(const MainConfiguration& configuration) {
  Languages languages;
  forEachText(configuration, NoPath(), [&languages](NoPath, const LocalizedText& text) {
    for (const auto& [language, words] : text) languages.insert(language);
  });
  return languages;
}

// Lists languages missing from the texts; empty when none is missing. Lists only a few: with as many languages as texts
// the message would grow quadratically.
template <class Texts>
std::string missing(const Languages& languages, const Texts& texts) {
  constexpr int mostNames = 8;
  std::string names;
  int count = 0;
  for (const auto language : languages) {
    if (texts.contains(language)) continue;
    if (++count > mostNames) return names + " and others";
    names += (count == 1 ? "" : ", ") + shown(language);
  }
  return names;
}

}  // namespace

void textsHaveAllLanguages(const MainConfiguration& configuration, const Report& report) {
  const auto languages = languagesOf(configuration);
  forEachText(configuration, DocumentPath(), [&](const DocumentPath& path, const LocalizedText& text) {
    if (const auto names = missing(languages, text); !names.empty()) report({path.text(), "has no text in " + names});
  });
}

// Labels of many languages are built in.
void labelsHaveAllLanguages(const MainConfiguration& configuration, const Report& report) {
  auto languages = languagesOf(configuration);
  std::erase_if(languages, [](std::string_view language) { return labelLanguage(language) != nullptr; });
  const auto names = missing(languages, configuration.translations.value_or(Translations()));
  if (!names.empty())
    report({DocumentPath().at("i18n").text(), "has no labels in " + names + "; they are English there"});
}

}  // namespace quillon::tools
