#include "tools/store/StoreReceipts.h"

#include <boost/json/serialize.hpp>
#include <chrono>
#include <ranges>

#include "core/History/NoticeArchive.h"
#include "core/Persistance/UserDefaults/StoreKeys.h"
#include "core/Persistance/UserDefaults/StoredValues.h"
#include "core/Text/Sha256.h"
#include "proof/Export/Export.h"
#include "proof/Receipt/ControllerJson.h"
#include "proof/Receipt/Receipt.h"
#include "tools/FileContent.h"
#include "tools/HistoryJson.h"
#include "tools/receipt/ExportFolder.h"
#include "tools/store/StoreReading.h"

namespace quillon::tools {
namespace {

std::expected<void, std::string> readNotices(const Platform& platform, HistoryEvidence& evidence) {
  if (!suiteFile(platform, noticeSuiteName)) return {};  // written by an earlier release, or without screens
  const auto opened = openSuite(platform, noticeSuiteName);
  if (!opened) return std::unexpected(opened.error());
  for (const auto& [hash, value] : opened->content.entries) {
    const auto* const text = std::get_if<std::string>(&value);
    if (text != nullptr && isSha256(hash)) evidence.notices.emplace(hash, *text);
  }
  return {};
}

std::expected<HistoryEvidence, std::string> evidenceIn(const Platform& platform) {
  auto opened = openSuite(platform, key::suiteName);
  if (!opened) return std::unexpected(opened.error());
  const auto& entries = opened->content.entries;
  const auto history = historyIn(opened->file, entries);
  if (!history) return std::unexpected(history.error());
  const StoredValues stored(entries);
  HistoryEvidence evidence{.head = stored.string(key::historyHead),
                           .damaged = history->damaged,
                           .subjectId = stored.string(key::subjectId, {})};
  for (const HistoryEntry& entry : history->entries | std::views::reverse) {
    evidence.entries.push_back(boost::json::serialize(toJson(entry)));
    evidence.language = entry.decision.language;
  }
  if (const auto found = entries.find(key::decidedApplicationsList); found != entries.end()) {
    const auto* const applications = std::get_if<std::vector<std::string>>(&found->second);
    if (applications != nullptr && !applications->empty()) evidence.applicationId = applications->back();
  }
  if (auto read = readNotices(platform, evidence); !read) return std::unexpected(read.error());
  return evidence;
}

std::expected<ReceiptRequest, std::string> requestOf(const Platform& platform, const StoreReceiptOptions& options) {
  auto evidence = evidenceIn(platform);
  if (!evidence) return std::unexpected(evidence.error());
  ReceiptRequest request{.evidence = std::move(*evidence), .purposes = options.purposes};
  request.time = std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now()).time_since_epoch().count();
  if (options.controller.empty()) return request;
  const auto content = contentOf(options.controller);
  if (!content) return std::unexpected(options.controller + ": cannot be read: " + content.error());
  auto controller = proof::readController(*content);
  if (!controller) return std::unexpected(options.controller + ": " + controller.error());
  request.controller = std::move(*controller);
  return request;
}

// Calls with the receipt request and the signing key.
template <class Make>
auto made(const StoreReceiptOptions& options, const Make& make)
    -> std::invoke_result_t<Make, const ReceiptRequest&, const proof::SigningKey&, RandomSource&> {
  const Platform platform = platformOver(options.dataDirectory);
  const auto request = requestOf(platform, options);
  if (!request) return std::unexpected(request.error());
  return proof::withKeyOf(*platform.keys,
                          [&](const proof::SigningKey& key) { return make(*request, key, *platform.random); });
}

}  // namespace

std::expected<void, std::string> writeReceipt(const StoreReceiptOptions& options) {
  const auto receipt = made(options, &proof::issueReceipt);
  if (!receipt) return std::unexpected(receipt.error());
  auto written = replaceContent(options.out, *receipt + '\n');
  return written ? written : std::unexpected(options.out + ": cannot be written: " + written.error());
}

std::expected<void, std::string> writeExport(const StoreReceiptOptions& options) {
  const auto files = made(options, &proof::exportFiles);
  return files ? writeFolder(options.out, *files) : std::unexpected(files.error());
}

}  // namespace quillon::tools
