#include "proof/Export/Export.h"

#include <set>

#include "proof/Json/CanonicalJson.h"
#include "proof/Json/Members.h"
#include "proof/Json/Times.h"
#include "proof/Json/UntrustedJson.h"
#include "proof/Receipt/Receipt.h"
#include "proof/Signature/Sha256.h"

namespace quillon::proof {
namespace {

namespace json = boost::json;

// An entry a line, so that people and their tools can compare two.
std::string historyFile(const HistoryEvidence& evidence) {
  json::array gone;
  for (const auto& [hash, text] : evidence.notices) {
    if (text.empty()) gone.push_back(json::string(hash));
  }
  json::object header{{"application_id", evidence.applicationId},
                      {"damaged", evidence.damaged},
                      {"gone_notices", std::move(gone)},
                      {"subject_id", evidence.subjectId}};
  if (evidence.head) header.emplace("head", *evidence.head);
  std::string text = canonicalJson(header);
  text.back() = ',';
  text += "\n\"entries\":[";
  for (const auto& entry : evidence.entries) {
    text += &entry == &evidence.entries.front() ? "\n" : ",\n";
    text += entry;
  }
  text += "\n]}\n";
  return text;
}

bool hasPurpose(const HistoryEvidence& evidence) {
  for (const auto& text : evidence.entries) {
    const auto entry = readUntrustedJson(text);
    if (entry && entry->is_object() && numberIn(entry->get_object(), "purpose_id")) return true;
  }
  return false;
}

}  // namespace

std::string manifestOf(const ExportFiles& files, std::int64_t time, const SigningKey& key) {
  json::array list;
  for (const auto& [name, content] : files) {
    list.push_back(json::object{{"name", name}, {"size", content.size()}, {"sha256", sha256Text(content)}});
  }
  return signedDocument("manifest", {{"created", timeText(time)}, {"files", std::move(list)}}, key);
}

std::expected<ExportFiles, std::string> exportFiles(const ReceiptRequest& request, const SigningKey& key,
                                                    RandomSource& random) {
  ExportFiles files;
  files[file::history] = historyFile(request.evidence);
  for (const auto& [hash, text] : request.evidence.notices) {
    if (!text.empty()) files[file::notices + hash + ".json"] = text;
  }
  files[file::key] = canonicalJson(key.publicKey().jwk());
  if (hasPurpose(request.evidence)) {
    auto receipt = issueReceipt(request, key, random);
    if (!receipt) return std::unexpected(receipt.error());
    files[file::receipt] = std::move(*receipt);
  }
  files[file::manifest] = manifestOf(files, request.time, key);
  return files;
}

}  // namespace quillon::proof
