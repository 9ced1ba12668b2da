#include "proof/Check/History.h"

#include <algorithm>
#include <set>

#include "core/History/NoticeArchive.h"
#include "core/Text/Sha256.h"
#include "proof/Json/CanonicalJson.h"
#include "proof/Json/Members.h"
#include "proof/Json/Times.h"
#include "proof/Json/UntrustedJson.h"

namespace quillon::proof {
namespace {

namespace json = boost::json;

std::expected<HistoryEntries, std::string> entriesIn(json::array array) {
  HistoryEntries entries;
  entries.reserve(array.size());
  for (auto& element : array) {
    if (!element.is_object()) return std::unexpected("entry " + std::to_string(entries.size() + 1) + " is no object");
    entries.push_back(std::move(element.get_object()));
  }
  return entries;
}

std::expected<ExportedHistory, std::string> wholeHistory(json::object document) {
  ExportedHistory history;
  auto* const listed = document.if_contains("entries");
  if (listed == nullptr || !listed->is_array()) return std::unexpected("has no list of entries");
  auto entries = entriesIn(std::move(listed->get_array()));
  if (!entries) return std::unexpected(entries.error());
  history.entries = std::move(*entries);
  if (const auto head = textIn(document, "head")) history.state.head = *head;
  history.state.damaged = numberIn(document, "damaged").value_or(0);
  forEachIn(document, "gone_notices", [&](const json::value& hash) {
    if (hash.is_string()) history.expiredNotices.emplace_back(hash.get_string());
  });
  return history;
}

// A single line may be one entry or a complete history.
std::expected<ExportedHistory, std::string> entryLines(std::string_view text) {
  ExportedHistory history;
  history.state.isHeadKnown = false;
  for (std::size_t line = 1; !text.empty(); ++line) {
    const auto end = std::min(text.find('\n'), text.size());
    const auto content = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    if (content.find_first_not_of(" \t\r") == std::string_view::npos) continue;
    auto read = readUntrustedJson(content);
    if (!read) return std::unexpected("line " + std::to_string(line) + ": " + read.error());
    if (!read->is_object()) return std::unexpected("line " + std::to_string(line) + ": is no entry");
    history.entries.push_back(std::move(read->get_object()));
  }
  return history;
}

}  // namespace

std::expected<ExportedHistory, std::string> readHistory(std::string_view text) {
  if (text.size() > largestProofFile) return std::unexpected("larger than 32 MiB");
  auto whole = readUntrustedJson(text);
  if (whole && whole->is_object() && whole->get_object().contains("entries")) {
    return wholeHistory(std::move(whole->get_object()));
  }
  auto lines = entryLines(text);
  return lines || whole ? std::move(lines) : std::unexpected(whole.error());
}

void checkNotices(const HistoryEntries& entries, const NoticeTexts& notices, Findings& findings) {
  const auto before = findings.faults();
  std::set<std::string> checked;
  std::size_t gone = 0;
  for (const auto& entry : entries) {
    const auto* const member = entry.if_contains("notice");
    if (member == nullptr) continue;
    const std::string hash(textIn(entry, "notice").value_or(""));
    if (hash == applicationsNotice || !checked.insert(hash).second) continue;
    const std::string subject = "notice " + hash;
    if (!isSha256(hash)) {
      findings.fault(nameOf(entry), "names no notice");
    } else if (const auto known = notices.find(hash); known == notices.end()) {
      findings.fault(subject, "is missing; " + nameOf(entry) + " answered it");
    } else if (!known->second) {
      ++gone;
      findings.note(subject, "is not kept any more; " + nameOf(entry) + " answered it");
    } else if (const auto read = readUntrustedJson(*known->second); !read) {
      findings.fault(subject, "cannot be read: " + read.error());
    } else if (sha256(canonicalJson(*read)) != hash) {
      findings.fault(subject, "was changed");
    }
  }
  if (findings.faults() == before && !checked.empty()) {
    findings.holds("notices", std::to_string(checked.size() - gone) + " are what was shown");
  }
}

void checkTimes(const HistoryEntries& entries, std::int64_t now, Findings& findings) {
  std::optional<std::int64_t> last;
  std::size_t backwards = 0;
  for (const auto& entry : entries) {
    const auto time = numberIn(entry, "time");
    if (!time) continue;
    if (*time > now + clockTolerance) findings.fault(nameOf(entry), "is from the future: " + timeText(*time));
    if (last && *time < *last) ++backwards;
    last = time;
  }
  if (backwards > 0) {
    findings.note("times", "the device's clock was set back " + std::to_string(backwards) + " times between entries");
  }
}

}  // namespace quillon::proof
