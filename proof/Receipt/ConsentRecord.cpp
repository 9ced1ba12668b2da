#include "proof/Receipt/ConsentRecord.h"

#include <algorithm>
#include <array>
#include <boost/json/value_from.hpp>
#include <set>

#include "core/Text/Sha256.h"
#include "core/Text/Uuid.h"
#include "proof/Json/Members.h"
#include "proof/Json/Times.h"
#include "proof/Receipt/ConsentEvent.h"

namespace quillon::proof {
namespace {

namespace json = boost::json;

void state(json::object& object, std::string_view key, const std::string& text) {
  if (!text.empty()) object.emplace(key, text);
}

void state(json::object& object, std::string_view key, const std::vector<std::string>& texts) {
  if (!texts.empty()) object.emplace(key, json::value_from(texts));
}

// The purpose as the notice showed it; null if it did not.
const json::object* shownPurpose(const json::object& notice, std::int64_t purposeId) {
  const json::object* found = nullptr;
  forEachIn(notice, "purposes", [&](const json::value& each) {
    if (each.is_object() && numberIn(each.get_object(), "purpose_id") == purposeId) found = &each.get_object();
  });
  return found;
}

struct ShownPurpose {
  PurposeTexts texts;
  std::optional<bool> isEssential;
};

// The texts shown last, else those of the present configuration.
ShownPurpose told(const RecordContext& context, std::int64_t purposeId,
                  const std::vector<const json::object*>& entries) {
  ShownPurpose told;
  if (const auto now = context.request.texts.find(purposeId); now != context.request.texts.end()) {
    told.texts = now->second;
  }
  for (const auto* entry : entries) {
    const auto notice = context.notices.find(std::string(textIn(*entry, "notice").value_or("")));
    const auto* const shown = notice != context.notices.end() ? shownPurpose(notice->second, purposeId) : nullptr;
    if (shown == nullptr) continue;
    told.texts = {.name = std::string(textIn(*shown, "name").value_or("")),
                  .description = std::string(textIn(*shown, "description").value_or(""))};
    forEachIn(*shown, "components", [&](const json::value& component) {
      if (const auto* const object = component.if_object()) {
        if (const auto name = textIn(*object, "name")) told.texts.recipients.emplace_back(*name);
      }
    });
    if (const auto* const essential = shown->if_contains("essential"); essential && essential->is_bool()) {
      told.isEssential = essential->get_bool();
    }
  }
  return told;
}

json::object purposeOf(std::int64_t purposeId, const PurposeTexts& texts) {
  json::object purpose{{"@type", "dpv:Purpose"}, {"dct:identifier", std::to_string(purposeId)}};
  state(purpose, "dct:title", texts.name);
  state(purpose, "dct:description", texts.description);
  return purpose;
}

json::object conditionOf(std::string_view type, std::string_view key, json::value value) {
  return {{"@type", type}, {key, std::move(value)}};
}

// Where the user can change a decision: in the application, and at the controller's address if there is one.
json::array controls(const ReceiptRequest& request) {
  const json::array types{"dpv:ProvideConsent", "dpv:WithdrawConsent"};
  json::array all;
  if (!request.evidence.applicationId.empty()) {
    all.push_back(json::object{{"@type", types},
                               {"dct:title", "preference centre of the application"},
                               {"dpv:isExercisedAt", request.evidence.applicationId}});
  }
  if (request.controller && !request.controller->withdrawalAddress.empty()) {
    all.push_back(json::object{{"@type", types}, {"dpv:isExercisedAt", request.controller->withdrawalAddress}});
  }
  return all;
}

std::string controllerId(const DataController& controller) {
  return controller.identifier.empty() ? controller.name : controller.identifier;
}

void stateController(json::object& process, const DataController& controller, Profile profile) {
  state(process, "dpv:hasDataController", controllerId(controller));
  state(process, "dpv:hasLegalBasis", controller.legalBasis);
  state(process, "dpv:hasJurisdiction", controller.jurisdiction);
  state(process, "dpv:hasPersonalData", controller.personalData);
  state(process, "dpv:hasDataSource", controller.dataSources);
  state(process, "dpv:hasProcessing", controller.processing);
  state(process, "dpv:hasAuthority", controller.authority);
  json::array storage;
  if (!controller.storageLocations.empty()) {
    storage.push_back(
        conditionOf("dpv:StorageLocation", "dpv:hasLocation", json::value_from(controller.storageLocations)));
  }
  if (!controller.retention.empty()) {
    storage.push_back(conditionOf("dpv:StorageDuration", "dpv:hasDuration", json::value(controller.retention)));
  }
  if (!storage.empty()) process.emplace("dpv:hasStorageCondition", std::move(storage));
  if (!controller.processingLocations.empty()) {
    process.emplace("dpv:hasProcessingCondition", conditionOf("dpv:ProcessingLocation", "dpv:hasLocation",
                                                              json::value_from(controller.processingLocations)));
  }
  if (controller.rightsContact.empty()) return;
  json::array types{"dpv:DataSubjectRight"};
  if (profile == Profile::euGdpr) types.push_back("eu-gdpr:A7-3");
  process.emplace("dpv:hasRight",
                  json::object{{"@type", std::move(types)}, {"dpv:isExercisedAt", controller.rightsContact}});
}

json::object processOf(const RecordContext& context, std::int64_t purposeId, const ShownPurpose& told) {
  json::object process{{"@type", "dpv:Process"}, {"dpv:hasPurpose", purposeOf(purposeId, told.texts)}};
  auto recipients = told.texts.recipients;
  if (context.request.controller) recipients.push_back(controllerId(*context.request.controller));
  std::erase(recipients, "");
  state(process, "dpv:hasRecipient", recipients);
  if (told.isEssential) process.emplace("dpv:hasNecessity", *told.isEssential ? "dpv:Required" : "dpv:Optional");
  if (auto all = controls(context.request); !all.empty()) process.emplace("dpv:hasConsentControl", std::move(all));
  if (context.request.controller) stateController(process, *context.request.controller, context.profile);
  return process;
}

json::object entityOf(const DataController& controller) {
  json::object contact;
  state(contact, "schema:email", controller.email);
  state(contact, "schema:telephone", controller.phone);
  json::object entity{{"@type", "dpv:DataController"}};
  state(entity, "@id", controllerId(controller));
  state(entity, "dpv:hasIdentifier", controllerId(controller));
  state(entity, "dpv:hasName", controller.name);
  if (!contact.empty()) {
    contact.emplace("@type", "schema:ContactPoint");
    entity.emplace("schema:contactPoint", std::move(contact));
  }
  if (!controller.postalAddress.empty()) {
    entity.emplace("schema:address",
                   conditionOf("schema:PostalAddress", "schema:streetAddress", json::value(controller.postalAddress)));
  }
  state(entity, "schema:url", controller.website);
  return entity;
}

json::object statusOf(const RecordContext& context, const json::object& entry) {
  const auto event = eventOf(entry);
  json::array types{event.state};
  if (event.state == "dpv:ConsentGiven" || event.state == "dpv:RenewedConsentGiven") {
    types.push_back("dpv:ExpressedConsent");
  }
  json::object status{
      {"@type", std::move(types)},
      {"dpv:isIndicatedBy", event.isByUser ? "dpv:DataSubject" : "dpv:DataController"},
      {"dpv:isIndicatedAtTime", timeText(numberIn(entry, "time").value_or(0))},
  };
  const std::string notice(textIn(entry, "notice").value_or(""));
  if (isSha256(notice)) {
    status.emplace("dpv:hasNotice", std::string(noticePrefix) + notice);
    if (const auto known = context.notices.find(notice); known != context.notices.end()) {
      if (const auto screen = textIn(known->second, "screen")) status.emplace("dpv:hasIndicationMethod", *screen);
    }
  } else if (!notice.empty()) {
    status.emplace("dpv:hasIndicationMethod", notice);
  }
  if (context.request.controller && !context.request.controller->validity.empty()) {
    status.emplace("dpv:hasDuration",
                   conditionOf("dpv:TemporalDuration", "rdf:value", json::value(context.request.controller->validity)));
  }
  auto decision = hashedPart(entry);
  if (const auto number = numberIn(entry, "number")) decision.emplace("number", *number);
  status.emplace(term::decision, std::move(decision));
  return status;
}

json::array noticesOf(const RecordContext& context, const std::vector<const json::object*>& entries) {
  std::set<std::string> seen;
  json::array all;
  for (const auto* entry : entries) {
    const std::string hash(textIn(*entry, "notice").value_or(""));
    if (!isSha256(hash) || !seen.insert(hash).second) continue;
    json::object notice{{"@id", std::string(noticePrefix) + hash},
                        {"@type", "dpv:ConsentNotice"},
                        {"dct:language", textIn(*entry, "language").value_or("")}};
    if (const auto known = context.notices.find(hash); known != context.notices.end()) {
      if (const auto language = textIn(known->second, "language")) notice["dct:language"] = *language;
    }
    all.push_back(std::move(notice));
  }
  return all;
}

// Constant parts of every receipt.
std::string identifierOf(const HistoryEvidence& evidence, std::int64_t purposeId) {
  const auto digest =
      sha256Bytes(evidence.applicationId + '\n' + evidence.subjectId + '\n' + std::to_string(purposeId));
  std::array<std::uint8_t, 16> bytes;
  std::copy_n(digest.begin(), bytes.size(), bytes.begin());
  constexpr unsigned custom = 8;
  return uuidOf(bytes, custom);
}

}  // namespace

json::object consentRecord(const RecordContext& context, std::int64_t purposeId,
                           const std::vector<const json::object*>& entries) {
  const auto& evidence = context.request.evidence;
  const bool isGdpr = context.profile == Profile::euGdpr;
  const std::string id = identifierOf(evidence, purposeId);
  json::object record{
      {"@id", "urn:uuid:" + id},
      {"@type", "dpv:ConsentRecord"},
      {"dct:identifier", id},
      {"dct:conformsTo", isGdpr ? schema::recordEuGdpr : schema::record},
  };
  if (!evidence.subjectId.empty()) {
    record.emplace("dpv:hasDataSubject",
                   json::object{{"@type", "dpv:DataSubject"}, {"dct:identifier", evidence.subjectId}});
  }
  state(record, "dct:language", std::string(textIn(*entries.back(), "language").value_or(evidence.language)));
  if (auto notices = noticesOf(context, entries); !notices.empty()) record.emplace("dpv:hasNotice", std::move(notices));
  record.emplace("dpv:hasProcess", processOf(context, purposeId, told(context, purposeId, entries)));
  json::array statuses;
  for (const auto* entry : entries) statuses.push_back(statusOf(context, *entry));
  record.emplace("dpv:hasConsentStatus", std::move(statuses));
  if (context.request.controller) {
    record.emplace("dpv:hasEntity", json::array{entityOf(*context.request.controller)});
  }
  const auto missing = missingFields(record, context.profile);
  if (!missing.empty()) record.emplace(term::missing, json::value_from(missing));
  return record;
}

}  // namespace quillon::proof
