// Histories with notices, as a store would have them.
#pragma once

#include <boost/json.hpp>
#include <string>
#include <string_view>

#include "core/Text/Sha256.h"
#include "platform/ReceiptIssuer.h"
#include "platform/memory/SeededRandom.h"
#include "proof/Check/Verification.h"
#include "proof/Export/Export.h"
#include "proof/History/Chain.h"
#include "proof/Json/CanonicalJson.h"

namespace quillon::proof::test {

namespace json = boost::json;

inline constexpr std::int64_t decisionTime = 1'700'000'000;
inline constexpr std::int64_t issueTime = decisionTime + 100'000;

inline const SigningKey& deviceKey() {
  static const SigningKey key({1, 2, 3});
  return key;
}
inline const SigningKey& otherKey() {
  static const SigningKey key({4, 5, 6});
  return key;
}

inline std::string noticeText(int version) {
  return canonicalJson(json::object{
      {"screen", "banner"},
      {"configuration_version", version},
      {"language", "de"},
      {"texts", json::array{json::object{{"role", "title"}, {"text", "Wir fragen <Sie>"}}}},
      {"purposes", json::array{json::object{{"purpose_id", 1},
                                            {"name", "Statistik"},
                                            {"description", "Wir z\u00e4hlen"},
                                            {"essential", false},
                                            {"components", json::array{json::object{{"name", "Counter"}}}}},
                               json::object{{"purpose_id", 2}, {"name", "Betrieb"}, {"essential", true}}}}});
}

// Appends to a history as the store does.
inline void append(HistoryEvidence& evidence, json::object entry, std::string_view begin = "first") {
  entry.emplace("previous", evidence.head ? std::string_view(*evidence.head) : begin);
  evidence.head = entryHash(entry);
  entry.emplace("number", static_cast<std::int64_t>(evidence.entries.size() + 1));
  entry.emplace("upload", "pending");
  evidence.entries.push_back(json::serialize(entry));
}

inline json::object decision(std::int64_t purposeId, std::string_view to, std::string_view cause) {
  return {{"time", decisionTime},
          {"purpose_id", purposeId},
          {"to", to},
          {"cause", cause},
          {"given_type", "CONSENT_EXPLICIT"},
          {"configuration_version", 1},
          {"compliance_type", "opt-in"},
          {"language", "de"}};
}

// Two purposes, three notices of which the first is gone by age, and a permission.
inline HistoryEvidence someEvidence(int entries = 12) {
  HistoryEvidence evidence{.subjectId = "subject-1", .applicationId = "news-reader", .language = "de"};
  constexpr std::string_view answers[] = {"granted", "withdrawn", "declined"};
  for (int i = 0; i < entries; ++i) {
    const bool isByUser = i % 4 != 3;
    auto entry = decision(1 + i % 2, answers[static_cast<std::size_t>(i) % 3], isByUser ? "user" : "default");
    entry["time"] = decisionTime + i;
    if (isByUser) {
      const auto notice = noticeText(i % 3);
      const auto hash = sha256(notice);
      evidence.notices.emplace(hash, i % 3 == 0 ? "" : notice);
      entry.emplace("notice", i == 1 ? "application" : std::string_view(hash));
    }
    append(evidence, std::move(entry));
  }
  auto permission = decision(0, "granted", "device");
  permission.erase("purpose_id");
  permission.emplace("permission", "camera");
  append(evidence, std::move(permission));
  return evidence;
}

inline DataController completeController() {
  return {.name = "Reader Ltd",
          .identifier = "https://reader.example/",
          .postalAddress = "1 Reading Road",
          .email = "privacy@reader.example",
          .phone = "+49 30 1",
          .website = "https://reader.example/",
          .legalBasis = "eu-gdpr:A6-1-a",
          .jurisdiction = "loc:EU",
          .personalData = {"pd:DeviceBased"},
          .dataSources = {"dpv:DataSubjectDataSource"},
          .processing = {"dpv:Collect"},
          .storageLocations = {"loc:DE"},
          .processingLocations = {"loc:DE"},
          .retention = "P6M",
          .validity = "P12M",
          .withdrawalAddress = "https://reader.example/consent",
          .rightsContact = "https://reader.example/rights",
          .authority = "https://authority.example/"};
}

inline ReceiptRequest request(HistoryEvidence evidence = someEvidence()) {
  return {.evidence = std::move(evidence), .controller = completeController(), .time = issueTime};
}

inline ExportFiles someExport(const ReceiptRequest& from = request(), const SigningKey& key = deviceKey()) {
  SeededRandom random;
  return exportFiles(from, key, random).value();
}

inline Findings checkedExport(const ExportFiles& files, const Expectations& expected = {.now = issueTime}) {
  Findings findings;
  checkExport(files, expected, findings);
  return findings;
}

inline Findings checkedReceipt(std::string_view document, const Expectations& expected = {.now = issueTime},
                               const std::optional<KnownHistory>& history = std::nullopt) {
  Findings findings;
  checkReceipt(document, expected, history, findings);
  return findings;
}

inline std::string listed(const Findings& findings, Finding::Kind kind = Finding::Kind::fault) {
  std::string text;
  for (const auto& each : findings.all()) {
    if (each.kind == kind) text += each.subject + ": " + each.text + '\n';
  }
  return text;
}

}  // namespace quillon::proof::test
