#include "core/History/DecisionHistory.h"

#include <algorithm>
#include <limits>
#include <map>
#include <optional>

#include "core/Json/Codec.h"
#include "quillon/RawValue.h"

namespace quillon {
namespace {

constexpr std::size_t longestLanguage = 64;

// Of one purpose or one permission.
using Subject = std::pair<std::optional<std::int64_t>, std::optional<VantariKey>>;

std::map<Subject, ConsentStatus> statusesIn(const PostConsentsRequest& request) {
  std::map<Subject, ConsentStatus> statuses;
  for (const auto& purpose : request.purposeConsents) {
    statuses.emplace(Subject(purpose.purposeID, std::nullopt), purpose.consentStatus);
  }
  for (const auto& permission : request.permissions) {
    statuses.emplace(Subject(std::nullopt, permission.permission), permission.consentStatus);
  }
  return statuses;
}

}  // namespace

std::string journalText(const Decision& decision) {
  if (decision.language.size() <= longestLanguage) return encode(decision);
  Decision shortened = decision;  // The host's text may be of any length.
  shortened.language.resize(longestLanguage);
  return encode(shortened);
}

HistoryPage historyOf(const JournalPage& page, std::size_t count) {
  HistoryPage history;
  history.damaged = static_cast<std::int64_t>(page.damaged.size());
  std::int64_t oldest = std::numeric_limits<std::int64_t>::max();
  for (const auto number : page.damaged) oldest = std::min(oldest, number);
  for (const JournalRecord& record : page.records) {
    oldest = std::min(oldest, record.number);
    auto decision = decode<Decision>(record.text);
    const auto outcome = record.mark.empty() ? UploadOutcome::pending : fromRawValue<UploadOutcome>(record.mark);
    if (decision && outcome) {
      history.entries.push_back({record.number, std::move(*decision), *outcome});
    } else {
      ++history.damaged;
    }
  }
  if (page.records.size() + page.damaged.size() >= std::max<std::size_t>(count, 1)) history.before = oldest;
  return history;
}

std::vector<std::string> outcomesOf(const std::vector<JournalRecord>& pending, const PostConsentsRequest& sent,
                                    const std::function<bool(const Decision&)>& isStillPending) {
  const auto statuses = statusesIn(sent);
  std::map<Subject, bool> isUploaded;
  std::vector<std::string> outcomes;
  for (const JournalRecord& record : pending) {
    const auto outcome = [&]() -> UploadOutcome {
      const auto decision = decode<Decision>(record.text);
      if (!decision) return UploadOutcome::pending;
      const Subject subject(decision->purposeId, decision->permission);
      bool& uploaded = isUploaded[subject];
      if (uploaded) return UploadOutcome::superseded;
      const auto status = statuses.find(subject);
      uploaded = status != statuses.end() && status->second == decision->to;
      if (uploaded) return UploadOutcome::uploaded;
      if (isStillPending(*decision)) return UploadOutcome::pending;
      return status == statuses.end() ? UploadOutcome::dropped : UploadOutcome::superseded;
    }();
    outcomes.emplace_back(outcome == UploadOutcome::pending ? std::string_view() : rawValue(outcome));
  }
  return outcomes;
}

}  // namespace quillon
