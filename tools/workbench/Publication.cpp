#include "tools/workbench/Publication.h"

#include <algorithm>
#include <limits>

#include "core/Json/Codec.h"
#include "tools/diff/Differences.h"
#include "tools/document/Edits.h"
#include "tools/validate/Check.h"
#include "tools/validate/Output.h"

namespace quillon::tools {
namespace {

std::unexpected<NotPublished> refused(std::string why, std::vector<Finding> findings = {}) {
  return std::unexpected(NotPublished{{.text = std::move(why)}, toJson(findings)});
}

}  // namespace

std::optional<std::int64_t> versionToPublish(const MainConfiguration& draft, const MainConfiguration* live) {
  if (!live) return draft.version ? std::nullopt : std::optional<std::int64_t>(1);
  const auto was = live->version.value_or(0);
  if (draft.version && *draft.version > was) return std::nullopt;
  const bool isMaterial = std::ranges::any_of(differences(*live, draft), &Difference::isMaterial);
  const bool isLast = was == std::numeric_limits<std::int64_t>::max();
  return (isMaterial || !draft.version) && !isLast ? std::optional(was + 1) : std::nullopt;
}

std::expected<Published, NotPublished> publish(DraftFolder& folder, const DocumentName& name, const std::string& tag,
                                               bool isConfirmed) {
  const auto draft = folder.read(name, Channel::draft);
  const auto live = folder.read(name, Channel::live);
  if (!draft) return refused(draft.error());
  if (!live) return refused(live.error());
  if (!*draft) return refused("there is no draft");
  if ((*draft)->tag != tag) {
    return std::unexpected(NotPublished{{.isConflict = true, .text = "the draft has changed on disk"}});
  }
  Published published{.draft = **draft};
  auto [configuration, findings] = check(published.draft.text, {.lint = true, .fairness = true});
  if (!configuration) return refused("applications would refuse the draft", std::move(findings));
  std::erase_if(findings, [](const Finding& finding) { return finding.level == Level::note; });
  // A missing version is given below.
  std::erase_if(findings, [](const Finding& finding) { return finding.rule == "version"; });
  if (!findings.empty() && !isConfirmed) return refused("there are warnings", std::move(findings));

  published.version = configuration->version.value_or(0);
  const auto compared = *live ? decode<MainConfiguration>((*live)->text) : std::unexpected(std::string());
  if (const auto version = versionToPublish(*configuration, compared ? &*compared : nullptr)) {
    const auto document = Document::parse(published.draft.text);
    Edits edits(*document);
    if (!edits.set(DocumentPath().at("version"), *version)) return refused("the version has no place");
    published.isRaised = true;
    published.version = *version;
    published.draft.text = edits.text();
    const auto written = folder.write(name, Channel::draft, published.draft.text, tag);
    if (!written) return std::unexpected(NotPublished{written.error()});
    published.draft.tag = *written;
  }
  const auto written = folder.write(name, Channel::live, published.draft.text, *live ? (*live)->tag : std::string());
  if (!written) return std::unexpected(NotPublished{written.error()});
  return published;
}

}  // namespace quillon::tools
