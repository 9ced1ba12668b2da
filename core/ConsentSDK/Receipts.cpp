#include "core/ConsentSDK/Receipts.h"

#include <limits>
#include <ranges>

#include "core/Json/Codec.h"
#include "core/Logger/UnitLog.h"
#include "core/Persistance/UserDefaults/StoreKeys.h"
#include "core/Text/LocalizedTexts.h"

namespace quillon {
namespace {

constexpr std::string_view headKey = "HISTORY_HEAD";

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

std::optional<HistoryEvidence> Receipts::evidence() const {
  // A decision between the two readings would leave the newest hash without its entry.
  constexpr int attempts = 10;
  for (int attempt = 0; attempt < attempts; ++attempt) {
    const auto entries = s_.store.snapshot();
    const StoredValues stored(*entries);
    HistoryEvidence evidence{.head = stored.string(headKey), .subjectId = stored.string(key::subjectId, {})};
    const auto history = s_.store.history(std::numeric_limits<std::int64_t>::max(), maximumJournalRecords);
    if (StoredValues(*s_.store.snapshot()).string(headKey) != evidence.head) continue;
    evidence.damaged = history.damaged;
    for (const auto& entry : history.entries | std::views::reverse) evidence.entries.push_back(numbered(entry));
    return evidence;
  }
  return std::nullopt;
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
  auto known = evidence();
  if (!known) return failure("the history changes too often");
  const auto session = s_.sessions.current();
  known->language = s_.sessions.language();
  if (session) known->applicationId = session->options.appId;
  ReceiptRequest request{.evidence = std::move(*known), .purposes = std::move(purposes)};
  request.texts = purposeTexts(request.evidence.language);
  if (session) request.controller = session->options.controller;
  request.time = wholeSeconds(platform.clock->now());
  auto document = platform.receipts->issue(request, *platform.keys, *platform.random);
  return document ? Result::success(std::move(*document)) : failure(std::move(document.error()));
}

std::optional<std::string> Receipts::keyThumbprint() const {
  if (!s_.platform.receipts || !s_.platform.keys) return std::nullopt;
  auto thumbprint = s_.platform.receipts->keyThumbprint(*s_.platform.keys);
  if (!thumbprint) {
    UnitLog(s_.logger, unit::consentSDK)(LogLevel::warning, "The device's key cannot be used: " + thumbprint.error(),
                                         __func__);
    return std::nullopt;
  }
  return std::move(*thumbprint);
}

}  // namespace quillon
