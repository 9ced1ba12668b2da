#include "tools/texts/TextTable.h"

#include <algorithm>
#include <set>

#include "tools/document/Edits.h"
#include "tools/validate/Codes.h"
#include "tools/validate/Languages.h"
#include "ui/Common/Labels/Languages.h"

namespace quillon::tools {
namespace {

constexpr std::string_view source = "en";

// Replaces the indices of purposes, SDKs and permissions by their identifiers.
std::string stableId(const MainConfiguration& configuration, const DocumentPath& path) {
  auto steps = path.steps();
  const auto index = [&steps](std::size_t at) { return std::get<std::size_t>(steps[at]); };
  const auto identify = [&steps](std::size_t at, std::string identifier) {
    if (!identifier.empty()) steps[at - 1] = std::get<std::string>(steps[at - 1]) + '[' + identifier + ']';
    return !identifier.empty();
  };
  if (steps.front() == DocumentPath::Step("purposes")) {
    const Purpose& purpose = (*configuration.purposes)[index(1)];
    if (steps.size() > 4) {
      const SDK& sdk = (*purpose.sdks)[index(3)];
      if (sdk.sdkId && identify(3, std::to_string(*sdk.sdkId))) steps.erase(steps.begin() + 3);
    }
    if (purpose.purposeId && identify(1, std::to_string(*purpose.purposeId))) steps.erase(steps.begin() + 1);
  } else if (steps.front() == DocumentPath::Step("permissions")) {
    const auto& permission = (*configuration.permissions)[index(1)].permissionId;
    if (permission && identify(1, permission->rawValue())) steps.erase(steps.begin() + 1);
  }
  return DocumentPath(std::move(steps)).text();
}

// Adds the configuration's labels and the built-in ones.
void addLabels(const MainConfiguration& configuration, TextTable& table) {
  for (std::size_t i = 0; i < labelKeys.size(); ++i) {
    const std::string key(labelKeys[i]);
    TextRow row{.id = "i18n." + key, .before = DocumentPath().at("i18n"), .after = key};
    if (configuration.translations) {
      for (const auto& [language, labels] : *configuration.translations) {
        if (!labels) continue;
        if (const auto label = labels->find(key); label != labels->end()) row.texts.emplace(language, label->second);
      }
    }
    for (const auto& language : table.languages) {
      if (const auto* ours = labelLanguage(language)) row.texts.emplace(language, ours->texts[i]);
    }
    table.rows.push_back(std::move(row));
  }
}

}  // namespace

DocumentPath TextRow::in(std::string_view language) const {
  const auto path = before.at(language);
  return after.empty() ? path : path.at(after);
}

TextTable textTable(const MainConfiguration& configuration, const std::vector<std::string>& further) {
  std::set<std::string, std::less<>> languages(further.begin(), further.end());
  for (const auto language : languagesOf(configuration)) languages.emplace(language);
  if (configuration.translations) {
    for (const auto& [language, labels] : *configuration.translations) languages.insert(language);
  }
  languages.erase(std::string(source));
  TextTable table{.languages = {std::string(source)}};
  table.languages.insert(table.languages.end(), languages.begin(), languages.end());
  forEachText(configuration, DocumentPath(), [&](const DocumentPath& path, const LocalizedText& text) {
    table.rows.push_back({.id = stableId(configuration, path), .before = path, .texts = {text.begin(), text.end()}});
  });
  addLabels(configuration, table);
  // A duplicate identifier is ambiguous: its first use keeps it, the others are identified by path.
  std::set<std::string_view> taken;
  for (TextRow& row : table.rows) {
    if (!taken.insert(row.id).second) row.id = '@' + row.before.text();
  }
  return table;
}

std::expected<Translated, std::string> translated(const Document& document, const MainConfiguration& configuration,
                                                  const std::vector<Translation>& translations) {
  const TextTable table = textTable(configuration);
  std::map<std::string_view, const TextRow*> rows;
  for (const TextRow& row : table.rows) rows.emplace(row.id, &row);
  Edits edits(document);
  Translated result;
  for (const auto& [id, language, text] : translations) {
    const auto row = rows.find(id);
    if (row == rows.end()) return std::unexpected("the configuration has no text " + inQuotes(id));
    if (text.empty()) continue;
    const auto known = row->second->texts.find(language);
    if (known != row->second->texts.end() && known->second == text) continue;
    if (std::ranges::find(table.languages, language) == table.languages.end()) {
      if (const auto problem = languageProblem(language); !problem.empty()) return std::unexpected(problem);
    }
    if (!edits.set(row->second->in(language), boost::json::value(text)))
      return std::unexpected(inQuotes(id) + " has no place");
    ++result.changed;
  }
  result.document = edits.text();
  return result;
}

}  // namespace quillon::tools
