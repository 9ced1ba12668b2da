// Whatever somebody hands out as a receipt or an export, it is checked in bounds and shown without mark-up of its own.
// The first byte says as what the rest is read; an export's files are divided by zero bytes, in the order of their
// names.
#include <array>

#include "fuzz/Check.h"
#include "proof/Check/SignedDocument.h"
#include "proof/Check/Verification.h"
#include "proof/Export/Export.h"
#include "proof/Json/CanonicalJson.h"
#include "proof/Json/UntrustedJson.h"
#include "proof/Page/HtmlPage.h"
#include "proof/Page/Summary.h"
#include "proof/Receipt/ControllerJson.h"

namespace {

using namespace quillon::proof;

const Expectations expected{.now = 1'700'000'000};

void checkJson(std::string_view text) {
  const auto read = readUntrustedJson(text);
  if (!read) return;
  const auto canonical = canonicalJson(*read);
  const auto again = readUntrustedJson(canonical);
  quillon::fuzz::check(again && canonicalJson(*again) == canonical, "the canonical form is its own canonical form");
}

void checkDocument(std::string_view text) {
  Findings findings;
  checkReceipt(text, expected, std::nullopt, findings);
  quillon::fuzz::check(findings.faults() > 0, "what nobody signed does not hold");
  Findings ignored;
  const auto document = checkSigned("receipt", text, expected, ignored);
  if (!document) return;
  const auto page = htmlPage(summaryOf(document->content, findings, {}), "en", false);
  quillon::fuzz::check(page.find("<script") == std::string::npos && page.find("<img") == std::string::npos,
                       "nothing becomes mark-up");
}

void checkFolder(std::string_view text) {
  const std::array<std::string, 5> names{file::history, file::key, file::manifest, "notices/0.json", file::receipt};
  ExportFiles files;
  for (const auto& name : names) {
    const auto end = std::min(text.find('\0'), text.size());
    files[name] = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  Findings findings;
  checkExport(files, expected, findings);
  quillon::fuzz::check(findings.faults() > 0, "what nobody signed does not hold");
}

void checkLines(std::string_view text) {
  const auto history = readHistory(text);
  if (!history) return;
  Findings findings;
  checkChain(history->entries, history->state, findings);
  checkNotices(history->entries, {}, findings);
  checkTimes(history->entries, expected.now, findings);
  quillon::fuzz::check(findings.all().size() <= Findings::most, "findings are bounded");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::string_view text(reinterpret_cast<const char*>(data) + 1, size - 1);
  constexpr std::array readers{checkJson, checkDocument, checkFolder, checkLines};
  readers[data[0] % readers.size()](text);
  (void)thumbprintOf(text);
  (void)readController(text);
  return 0;
}
