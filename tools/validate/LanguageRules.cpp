#include <algorithm>
#include <set>
#include <string_view>

#include "core/Configuration/ConfiguredTexts.h"
#include "core/Text/LogText.h"
#include "tools/validate/Codes.h"
#include "tools/validate/Languages.h"
#include "tools/validate/Rules.h"

namespace quillon::tools {
namespace {

bool isBlank(std::string_view text) {
  return text.find_first_not_of(" \t\r\n") == std::string_view::npos;
}

// Lists languages missing from the texts, or blank there while others are not; empty when none is. Lists only a few:
// with as many languages as texts the message would grow quadratically.
std::string missing(const Languages& languages, const LocalizedText& texts) {
  constexpr int mostNames = 8;
  std::string names;
  int count = 0;
  const bool isNone = std::ranges::all_of(texts, [](const auto& text) { return isBlank(text.second); });
  for (const auto language : languages) {
    const auto text = texts.find(language);
    if (text != texts.end() && (isNone || !isBlank(text->second))) continue;
    if (++count > mostNames) return names + " and others";
    names += (count == 1 ? "" : ", ") + excerptForLog(language);
  }
  return names;
}

}  // namespace

void textsHaveAllLanguages(const MainConfiguration& configuration, const Report& report) {
  const auto languages = languagesOf(configuration);
  forEachText(configuration, DocumentPath(), [&](const DocumentPath& path, const LocalizedText& text) {
    if (const auto names = missing(languages, text); !names.empty()) report(path, "has no text in " + names);
  });
}

void languagesExist(const MainConfiguration& configuration, const Report& report) {
  std::set<std::string, std::less<>> told;
  const auto expectLanguage = [&](const DocumentPath& path, const std::string& language) {
    if (report.isFull() || told.contains(language)) return;
    const auto problem = languageProblem(language);
    if (problem.empty()) return;
    told.insert(language);
    report(path.at(language), problem);
  };
  forEachText(configuration, DocumentPath(), [&](const DocumentPath& path, const LocalizedText& text) {
    for (const auto& [language, words] : text) expectLanguage(path, language);
  });
  if (!configuration.translations) return;
  for (const auto& [language, labels] : *configuration.translations) {
    expectLanguage(DocumentPath().at("i18n"), language);
  }
}

}  // namespace quillon::tools
