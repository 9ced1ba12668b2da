#include <algorithm>
#include <vector>

#include "core/Text/LogText.h"
#include "tools/validate/Languages.h"
#include "tools/validate/Rules.h"
#include "tools/validate/Spelling.h"
#include "ui/Common/Labels/Languages.h"

namespace quillon::tools {
namespace {

const DocumentPath labelsPath = DocumentPath().at("i18n");

bool isPattern(std::string_view text) {
  return text.contains("%1") && text.contains("%2");
}

// Calls with the labels of each language that has any.
template <class Visit>
void forEachLanguage(const MainConfiguration& configuration, Visit visit) {
  if (!configuration.translations) return;
  for (const auto& [language, labels] : *configuration.translations) {
    if (labels) visit(labelsPath.at(language), language, *labels);
  }
}

}  // namespace

// Many languages have built-in labels.
void labelsAreComplete(const MainConfiguration& configuration, const Report& report) {
  constexpr std::size_t mostNames = 8;
  for (const auto language : languagesOf(configuration)) {
    if (labelLanguage(language)) continue;
    const auto& all = configuration.translations;
    const auto found = all ? all->find(language) : Translations::const_iterator();
    if (!all || found == all->end() || !found->second) {
      report(labelsPath, "has no labels in " + excerptForLog(language) + "; they are English there");
      continue;
    }
    std::size_t count = 0;
    std::string names;
    for (const auto key : labelKeys) {
      const auto label = found->second->find(key);
      if (label != found->second->end() && !label->second.empty()) continue;
      if (++count <= mostNames) names += (count == 1 ? "" : ", ") + std::string(key);
    }
    if (count == 0) continue;
    report(labelsPath.at(language), "lacks " + std::to_string(count) + " of " + std::to_string(labelKeys.size()) +
                                        " labels, which are English there: " + names +
                                        (count > mostNames ? " and others" : ""));
  }
}

void labelsAreKnown(const MainConfiguration& configuration, const Report& report) {
  forEachLanguage(configuration, [&](const DocumentPath& path, const std::string&, const auto& labels) {
    for (const auto& [key, text] : labels) {
      if (std::ranges::find(labelKeys, key) != labelKeys.end()) continue;
      report(path.at(key), "the screens have no such label" + (report.isFull() ? "" : didYouMean(key, labelKeys)));
    }
  });
}

void patternsHaveTheirPlaces(const MainConfiguration& configuration, const Report& report) {
  forEachLanguage(configuration, [&](const DocumentPath& path, const std::string&, const auto& labels) {
    for (std::size_t i = 0; i < labelKeys.size(); ++i) {
      const auto label = labels.find(labelKeys[i]);
      if (!isPattern(englishLabels().texts[i]) || label == labels.end()) continue;
      if (label->second.empty() || isPattern(label->second)) continue;
      report(path.at(labelKeys[i]), "lacks %1 or %2; our pattern is used");
    }
  });
}

}  // namespace quillon::tools
