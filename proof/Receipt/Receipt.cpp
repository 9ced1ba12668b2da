#include "proof/Receipt/Receipt.h"

#include <map>

#include "core/Text/Sha256.h"
#include "core/Text/Uuid.h"
#include "proof/Json/CanonicalJson.h"
#include "proof/Json/Members.h"
#include "proof/Json/Times.h"
#include "proof/Json/UntrustedJson.h"
#include "proof/Receipt/ConsentRecord.h"
#include "proof/Receipt/Vocabulary.h"
#include "proof/Signature/Jws.h"
#include "quillon/version.h"

namespace quillon::proof {
namespace {

namespace json = boost::json;

using EntriesByPurpose = std::map<std::int64_t, std::vector<const json::object*>>;

std::expected<HistoryEntries, std::string> allEntriesOf(const HistoryEvidence& evidence) {
  HistoryEntries entries;
  for (const auto& text : evidence.entries) {
    auto read = readUntrustedJson(text);
    if (!read || !read->is_object()) return std::unexpected("an entry of the history cannot be read");
    entries.push_back(std::move(read->get_object()));
  }
  return entries;
}

std::map<std::string, json::object> noticesOf(const HistoryEvidence& evidence) {
  std::map<std::string, json::object> notices;
  for (const auto& [hash, text] : evidence.notices) {
    if (text.empty()) continue;
    auto read = readUntrustedJson(text);
    if (read && read->is_object()) notices.emplace(hash, std::move(read->get_object()));
  }
  return notices;
}

std::expected<EntriesByPurpose, std::string> byPurpose(const ReceiptRequest& request, const HistoryEntries& entries) {
  EntriesByPurpose decided;
  for (const auto& entry : entries) {
    if (const auto id = numberIn(entry, "purpose_id")) decided[*id].push_back(&entry);
  }
  if (request.purposes.empty()) {
    if (decided.empty()) return std::unexpected("no purpose was decided on");
    return decided;
  }
  EntriesByPurpose wanted;
  for (const auto id : request.purposes) {
    const auto found = decided.find(id);
    if (found == decided.end()) return std::unexpected("purpose " + std::to_string(id) + " was not decided on");
    wanted.insert(*found);
  }
  return wanted;
}

// The notices that the decisions answered, without duplicates.
json::object answered(const EntriesByPurpose& decided, const std::map<std::string, json::object>& notices) {
  json::object all;
  for (const auto& [id, entries] : decided) {
    for (const auto* entry : entries) {
      const std::string hash(textIn(*entry, "notice").value_or(""));
      if (!isSha256(hash)) continue;
      const auto known = notices.find(hash);
      all.emplace(hash, known != notices.end() ? json::value(known->second) : json::value());
    }
  }
  return all;
}

Profile profileOf(const ReceiptRequest& request) {
  const bool isGdpr = request.controller && request.controller->legalBasis.starts_with("eu-gdpr:");
  return isGdpr ? Profile::euGdpr : Profile::generic;
}

}  // namespace

std::expected<std::string, std::string> signedDocument(std::string_view name, json::object content,
                                                       const SigningKey& key) {
  auto signature = detachedJws(canonicalJson(content), key);
  if (!signature) return std::unexpected(std::move(signature.error()));
  return canonicalJson(json::object{{name, std::move(content)}, {"signature", std::move(*signature)}});
}

std::expected<std::string, std::string> issueReceipt(const ReceiptRequest& request, const SigningKey& key,
                                                     RandomSource& random) {
  const auto entries = allEntriesOf(request.evidence);
  if (!entries) return std::unexpected(entries.error());
  const auto decided = byPurpose(request, *entries);
  if (!decided) return std::unexpected(decided.error());
  const auto notices = noticesOf(request.evidence);
  const RecordContext context{request, notices, profileOf(request)};
  json::array records;
  for (const auto& [id, on] : *decided) records.push_back(consentRecord(context, id, on));
  const std::string id = randomUuid(random);
  json::object receipt{
      {"@context", prefixes()},
      {"@id", "urn:uuid:" + id},
      {"@type", "dpv:ConsentReceipt"},
      {"dct:identifier", id},
      {"dpv:hasIdentifier", id},
      {"dct:conformsTo", context.profile == Profile::euGdpr ? schema::receiptEuGdpr : schema::receipt},
      {"dct:created", timeText(request.time)},
      {"dct:creator", "Quillon consent SDK " QUILLON_VERSION},
      {"schema:recipient", "dpv:DataSubject"},
      {"dpv:hasRecordOfActivity", std::move(records)},
      {term::notices, answered(*decided, notices)},
  };
  if (request.controller && !request.controller->name.empty()) {
    receipt.emplace("dct:publisher", request.controller->name);
  }
  if (!request.evidence.language.empty()) receipt.emplace("dct:language", request.evidence.language);
  if (request.evidence.head) receipt.emplace(term::historyHead, *request.evidence.head);
  return signedDocument("receipt", std::move(receipt), key);
}

}  // namespace quillon::proof
