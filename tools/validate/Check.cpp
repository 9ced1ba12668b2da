#include "tools/validate/Check.h"

#include <algorithm>
#include <span>

#include "core/Json/Codec.h"
#include "tools/diff/Differences.h"
#include "tools/fairness/DrawnFairness.h"
#include "tools/fairness/Fairness.h"
#include "tools/validate/Lint.h"
#include "tools/validate/Structure.h"

namespace quillon::tools {
namespace {

// Reports the first material change that users will not be asked about.
void versionRises(const MainConfiguration& live, const MainConfiguration& configuration, const Report& report) {
  const auto was = live.version.value_or(0);
  if (configuration.version.value_or(0) > was) return;
  const auto found = differences(live, configuration);
  const auto first = std::ranges::find_if(found, &Difference::isMaterial);
  if (first == found.end()) return;
  const auto others = std::ranges::count_if(found, &Difference::isMaterial) - 1;
  report(DocumentPath().at("version"), "is not greater than " + std::to_string(was) + ", which is live, but " +
                                           first->text +
                                           (others > 0 ? ", and " + std::to_string(others) + " more" : ""));
}

}  // namespace

Checked check(const std::string& text, const CheckOptions& options) {
  Checked checked;
  Findings findings;
  const auto document = Document::parse(text);
  if (!document) {
    const auto& [path, offset, what] = document.error();
    findings.add({Level::error, "syntax", path.text(), what, offset});
    checked.findings = std::move(findings).located(text);
    return checked;
  }
  checkStructure(*document, jsonType<MainConfiguration>(), findings);
  auto configuration = decode<MainConfiguration>(text);
  // For example, the document takes too much memory.
  if (!configuration && !findings.hasErrors()) {
    findings.add({Level::error, "document", DocumentPath().text(), configuration.error()});
  }
  if (configuration) {
    const auto reportOf = [&](const Rule& rule) { return Report(findings, *document, rule.level, rule.name); };
    const auto apply = [&](std::span<const Rule> rules) {
      for (const Rule& rule : rules) rule.check(*configuration, reportOf(rule));
    };
    const auto ruleOf = [](std::string_view name) { return *std::ranges::find(documentRules(), name, &Rule::name); };
    if (options.live) versionRises(*options.live, *configuration, reportOf(ruleOf("version-rises")));
    if (options.screens) drawnAnswersAreAlike(text, *configuration, *options.screens, reportOf(ruleOf("fair-drawn")));
    if (options.lint) apply(lintRules());
    if (options.fairness) apply(fairnessRules());
    checked.configuration = *std::move(configuration);
  }
  checked.findings = std::move(findings).located(text);
  if (!options.lint) {
    std::erase_if(checked.findings, [](const Finding& finding) { return finding.rule == "unknown-key"; });
  }
  return checked;
}

}  // namespace quillon::tools
