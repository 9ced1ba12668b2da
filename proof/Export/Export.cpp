#include "proof/Export/Export.h"

#include <algorithm>
#include <boost/json/value_from.hpp>
#include <set>
#include <vector>

#include "core/Text/Sha256.h"
#include "proof/Json/CanonicalJson.h"
#include "proof/Json/Members.h"
#include "proof/Json/Times.h"
#include "proof/Json/UntrustedJson.h"
#include "proof/Receipt/Receipt.h"

namespace quillon::proof {
namespace {

namespace json = boost::json;

std::vector<json::object> readableEntriesOf(const HistoryEvidence& evidence) {
  std::vector<json::object> entries;
  for (const auto& text : evidence.entries) {
    auto entry = readUntrustedJson(text);
    if (entry && entry->is_object()) entries.push_back(std::move(entry->get_object()));
  }
  return entries;
}

// The hashes of answered notices that the store no longer has.
json::array expiredNotices(const HistoryEvidence& evidence, const std::vector<json::object>& entries) {
  std::set<std::string> gone;
  for (const auto& entry : entries) {
    const std::string hash(textIn(entry, "notice").value_or(""));
    const auto kept = evidence.notices.find(hash);
    if (isSha256(hash) && (kept == evidence.notices.end() || kept->second.empty())) gone.insert(hash);
  }
  return json::value_from(gone).as_array();
}

// One entry per line, so that two files can be compared line by line.
std::string historyFile(const HistoryEvidence& evidence, const std::vector<json::object>& entries) {
  json::object header{{"application_id", evidence.applicationId},
                      {"damaged", evidence.damaged + std::ssize(evidence.entries) - std::ssize(entries)},
                      {"gone_notices", expiredNotices(evidence, entries)},
                      {"subject_id", evidence.subjectId}};
  if (evidence.head) header.emplace("head", *evidence.head);
  std::string text = canonicalJson(header);
  text.back() = ',';
  text += "\n\"entries\":[";
  for (const auto& entry : entries) text += (&entry == &entries.front() ? "\n" : ",\n") + canonicalJson(entry);
  text += "\n]}\n";
  return text;
}

bool hasPurpose(const json::object& entry) {
  return numberIn(entry, "purpose_id").has_value();
}

}  // namespace

std::expected<std::string, std::string> manifestOf(const ExportFiles& files, std::int64_t time, const SigningKey& key) {
  json::array list;
  for (const auto& [name, content] : files) {
    list.push_back(json::object{{"name", name}, {"size", content.size()}, {"sha256", sha256(content)}});
  }
  return signedDocument("manifest", {{"created", timeText(time)}, {"files", std::move(list)}}, key);
}

std::expected<ExportFiles, std::string> exportFiles(const ReceiptRequest& request, const SigningKey& key,
                                                    RandomSource& random) {
  ExportFiles files;
  const auto entries = readableEntriesOf(request.evidence);
  files[file::history] = historyFile(request.evidence, entries);
  for (const auto& [hash, text] : request.evidence.notices) {
    if (!text.empty()) files[file::notices + hash + ".json"] = text;
  }
  files[file::key] = canonicalJson(key.publicKey().jwk());
  if (std::ranges::any_of(entries, hasPurpose)) {
    auto receipt = issueReceipt(request, key, random);
    if (!receipt) return std::unexpected(receipt.error());
    files[file::receipt] = std::move(*receipt);
  }
  auto manifest = manifestOf(files, request.time, key);
  if (!manifest) return std::unexpected(manifest.error());
  files[file::manifest] = std::move(*manifest);
  return files;
}

}  // namespace quillon::proof
