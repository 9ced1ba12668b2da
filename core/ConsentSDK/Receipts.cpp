#include "core/ConsentSDK/Receipts.h"

#include <limits>
#include <ranges>

#include "core/Json/Codec.h"
#include "core/Logger/UnitLog.h"
#include "core/Persistance/UserDefaults/StoreKeys.h"
#include "core/Text/LocalizedTexts.h"

namespace quillon {
namespace {

using Result = ConsentSDKResult<std::string>;

std::string numbered(const HistoryEntry& entry) {
  std::string text = encode(entry.decision);
  text.insert(1, "\"number\":" + std::to_string(entry.number) + ",");
  return text;
}

PurposeTexts textsOf(const Purpose& purpose, const std::string& language) {
  PurposeTexts texts;
  if (purpose.purposeName) texts.name = textIn(language, *purpose.purposeName);
  if (purpose.purposeDescription) texts.description = textIn(language, *purpose.purposeDescription);
  for (const SDK& sdk : purpose.sdks.value_or(std::vector<SDK>())) {
    if (sdk.sdkName) texts.recipients.push_back(textIn(language, *sdk.sdkName));
  }
  std::erase(texts.recipients, "");
  return texts;
}

}  // namespace

HistoryEvidence Receipts::evidence() const {
  const auto history = s_.store.verifiedHistory(std::numeric_limits<std::int64_t>::max(), maximumJournalRecords);
  HistoryEvidence evidence{.notices = s_.notices.texts(), .damaged = history.damaged};
  for (const auto& entry : history.entries | std::views::reverse) evidence.entries.push_back(numbered(entry));
  const auto stored = s_.store.snapshot();
  evidence.subjectId = StoredValues(*stored).string(key::subjectId, {});
  if (history.isNewestMissing) {
    evidence.head = StoredValues(*stored).string(key::historyHead);
  } else if (!history.entries.empty() && history.entries.front().decision.previous) {
    evidence.head = history.entries.front().hash;  // the stored head may belong to a newer entry by now
  }
  return evidence;
}

std::map<std::int64_t, PurposeTexts> Receipts::purposeTexts(const std::string& language) const {
  std::map<std::int64_t, PurposeTexts> texts;
  const auto configuration = s_.loader.current();
  if (!configuration || !configuration->purposes) return texts;
  for (const Purpose& purpose : *configuration->purposes) {
    if (purpose.purposeId) texts.emplace(*purpose.purposeId, textsOf(purpose, language));
  }
  return texts;
}

Result Receipts::receipt(std::vector<std::int64_t> purposes) const {
  const auto& platform = s_.platform;
  const auto failure = [this](std::string why) {
    UnitLog(s_.logger, unit::consentSDK)(LogLevel::error, "No receipt was made: " + why, "receipt");
    return Result::failure({std::move(why)});
  };
  if (!platform.receipts) return failure("the library quillon::proof is not linked");
  if (!platform.keys) return failure("the platform keeps no key");
  ReceiptRequest request{.evidence = evidence(), .purposes = std::move(purposes)};
  const auto session = s_.sessions.current();
  request.evidence.language = s_.sessions.language();
  if (session) request.evidence.applicationId = session->options.appId;
  request.texts = purposeTexts(request.evidence.language);
  if (session) request.controller = session->options.controller;
  request.time = wholeSeconds(platform.clock->now());
  auto document = platform.receipts->issue(request, *platform.keys, *platform.random);
  return document ? Result::success(std::move(*document)) : failure(std::move(document.error()));
}

}  // namespace quillon
