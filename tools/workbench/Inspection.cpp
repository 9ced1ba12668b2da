#include "tools/workbench/Inspection.h"

#include <ranges>

#include "core/Json/Codec.h"
#include "tools/diff/Differences.h"
#include "tools/document/Edits.h"
#include "tools/validate/Check.h"
#include "tools/validate/Contrasts.h"
#include "tools/validate/Languages.h"
#include "tools/validate/Output.h"
#include "tools/workbench/ContentTable.h"
#include "tools/workbench/Publication.h"

namespace quillon::tools {
namespace {

namespace json = boost::json;

json::array colors(const MainConfiguration& configuration) {
  json::array all;
  if (!configuration.bannerConfig) return all;
  for (const auto& [name, banner] : configuration.bannerConfig->categories) {
    for (const ColorPair& pair : colorPairs(banner)) {
      all.push_back({{"category", name},
                     {"key", pair.key},
                     {"on", pair.on},
                     {"contrast", pair.contrast},
                     {"enough", pair.enough}});
    }
  }
  return all;
}

json::object comparison(const MainConfiguration& live, const MainConfiguration& draft) {
  constexpr std::size_t most = 1000;
  const auto all = differences(live, draft);
  json::array found;
  for (const auto& [isMaterial, text] : all | std::views::take(most)) {
    found.push_back({{"isMaterial", isMaterial}, {"text", text}});
  }
  MainConfiguration published = draft;
  const auto version = versionToPublish(draft, &live);
  if (version) published.version = version;
  return {{"askedAgain", whoIsAskedAgain(live, published)},
          {"raisedVersion", version ? json::value(*version) : json::value()},
          {"isOlder", draft.version && *draft.version < live.version.value_or(0)},
          {"leftOut", all.size() - found.size()},
          {"differences", std::move(found)}};
}

std::optional<DocumentPath> pathFrom(const json::value* value) {
  if (!value || !value->is_array()) return std::nullopt;
  std::vector<DocumentPath::Step> steps;
  for (const json::value& step : value->get_array()) {
    if (step.is_string()) {
      steps.emplace_back(std::string(step.get_string()));
    } else if (step.is_int64() && step.get_int64() >= 0) {
      steps.emplace_back(static_cast<std::size_t>(step.get_int64()));
    } else {
      return std::nullopt;
    }
  }
  return DocumentPath(std::move(steps));
}

}  // namespace

json::object inspect(const std::string& text, const std::optional<std::string>& live) {
  const auto published = live ? decode<MainConfiguration>(*live) : std::unexpected(std::string());
  const auto [configuration, findings] =
      check(text, {.lint = true, .fairness = true, .live = published ? &*published : nullptr});
  json::object result{{"isValid", configuration.has_value()}, {"findings", toJson(findings)}};
  if (!configuration) return result;
  const auto languages = languagesOf(*configuration);
  json::array codes;
  for (const auto language : languages) codes.push_back(json::value(language));
  result["languages"] = std::move(codes);
  result["colors"] = colors(*configuration);
  result["content"] = contentTable(*configuration, languages);
  if (published) result["comparison"] = comparison(*published, *configuration);
  return result;
}

std::expected<std::string, std::string> changed(std::string text, const json::array& changes) {
  for (const json::value& change : changes) {
    const auto* object = change.if_object();
    const auto path = pathFrom(object ? object->if_contains("path") : nullptr);
    if (!path) return std::unexpected("a change has no path");
    const auto document = Document::parse(std::move(text));
    if (!document) return std::unexpected("the document is no JSON");
    if (const auto* value = object->if_contains("value")) {
      Edits edits(*document);
      if (!edits.set(*path, *value)) return std::unexpected(path->text() + " has no place in the document");
      text = edits.text();
    } else {
      // Removing a missing value is a no-op.
      text = without(*document, *path).value_or(document->text());
    }
  }
  return text;
}

}  // namespace quillon::tools
