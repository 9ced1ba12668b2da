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
  if ((isMaterial || !draft.version) && !isLast) return was + 1;
  // With a lower version, a later increase would not ask users again.
  return draft.version && *draft.version < was ? std::optional(was) : std::nullopt;
}

std::expected<Published, NotPublished> publish(DraftFolder& folder, const DocumentName& name,
                                               const PublicationRequest& request) {
  const auto draft = folder.read(name, Channel::draft);
  const auto live = folder.read(name, Channel::live);
  if (!draft) return refused(draft.error());
  if (!live) return refused(live.error());
  if (!*draft) return refused("there is no draft");
  const auto changed = [](const char* what) {
    return std::unexpected(NotPublished{{.isConflict = true, .text = what}});
  };
  if ((*draft)->tag != request.tag) return changed("the draft has changed on disk");
  const std::string liveTag = *live ? (*live)->tag : std::string();
  if (liveTag != request.liveTag) return changed("what is live has changed; compare with it again");
  Published published{.draft = **draft};
  auto [configuration, findings] = check(published.draft.text, {.lint = true, .fairness = true});
  if (!configuration) return refused("applications would refuse the draft", std::move(findings));
  std::erase_if(findings, [](const Finding& finding) { return finding.level == Level::note; });
  // A missing version is added below.
  std::erase_if(findings, [](const Finding& finding) { return finding.rule == "version"; });
  if (!findings.empty() && !request.isConfirmed) return refused("there are warnings", std::move(findings));

  published.version = configuration->version.value_or(0);
  const auto compared = *live ? decode<MainConfiguration>((*live)->text) : std::unexpected(std::string());
  if (const auto version = versionToPublish(*configuration, compared ? &*compared : nullptr)) {
    const auto document = Document::parse(published.draft.text);
    Edits edits(*document);
    if (!edits.set(DocumentPath().at("version"), *version)) return refused("the version has no place");
    published.isRaised = true;
    published.version = *version;
    published.draft.text = edits.text();
  }
  // Live first, so that a failure leaves the draft as its author knows it.
  const auto written = folder.write(name, Channel::live, published.draft.text, liveTag);
  if (!written) return std::unexpected(NotPublished{written.error()});
  if (published.isRaised) {
    const auto raised = folder.write(name, Channel::draft, published.draft.text, request.tag);
    if (!raised) return refused("it is live, but the draft did not get its version: " + raised.error().text);
  }
  published.draft.tag = *written;
  return published;
}

}  // namespace quillon::tools
