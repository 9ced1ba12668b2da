#include "proof/Receipt/Vocabulary.h"

#include <algorithm>
#include <array>

#include "proof/Json/Members.h"

namespace quillon::proof {
namespace {

namespace json = boost::json;

bool isStated(const json::object& object, std::string_view key) {
  const auto* const value = object.if_contains(key);
  if (value == nullptr || value->is_null()) return false;
  if (const auto* const text = value->if_string()) return !text->empty();
  if (const auto* const array = value->if_array()) return !array->empty();
  const auto* const members = value->if_object();
  return members == nullptr || !members->empty();
}

// True if there is at least one element and every element states the member.
bool doAllState(const json::object& record, std::string_view elements, std::string_view key) {
  bool isAnyThere = false;
  bool doAll = true;
  forEachIn(record, elements, [&](const json::value& element) {
    isAnyThere = true;
    doAll = doAll && element.is_object() && isStated(element.get_object(), key);
  });
  return isAnyThere && doAll;
}

bool inRecord(const json::object& record, std::string_view key) {
  return isStated(record, key);
}

// A member stated for the whole record need not be repeated in each process.
bool inProcesses(const json::object& record, std::string_view key) {
  return isStated(record, key) || doAllState(record, "dpv:hasProcess", key);
}

bool inNotices(const json::object& record, std::string_view key) {
  return isStated(record, key) || doAllState(record, "dpv:hasNotice", key);
}

bool inStatuses(const json::object& record, std::string_view key) {
  return doAllState(record, "dpv:hasConsentStatus", key);
}

// The data subject is exempt: a record needs neither name nor address of a user.
bool inEntities(const json::object& record, std::string_view key) {
  bool isAnyThere = false;
  bool doAll = true;
  forEachIn(record, "dpv:hasEntity", [&](const json::value& element) {
    const auto* const entity = element.if_object();
    if (entity == nullptr || hasType(*entity, "dpv:DataSubject")) return;
    isAnyThere = true;
    doAll = doAll && isStated(*entity, key);
  });
  return isAnyThere && doAll;
}

// True if the record, or else each of its processes, has a condition of this type.
bool isConditionIn(const json::object& object, std::string_view conditions, std::string_view type) {
  bool isThere = false;
  forEachIn(object, conditions, [&](const json::value& condition) {
    isThere = isThere || (condition.is_object() && hasType(condition.get_object(), type));
  });
  return isThere;
}

bool hasCondition(const json::object& record, std::string_view conditions, std::string_view type) {
  if (isConditionIn(record, conditions, type)) return true;
  bool isAnyThere = false;
  bool doAll = true;
  forEachIn(record, "dpv:hasProcess", [&](const json::value& process) {
    isAnyThere = true;
    doAll = doAll && process.is_object() && isConditionIn(process.get_object(), conditions, type);
  });
  return isAnyThere && doAll;
}

bool isStored(const json::object& record, std::string_view type) {
  return hasCondition(record, "dpv:hasStorageCondition", type);
}

bool isProcessed(const json::object& record, std::string_view type) {
  return hasCondition(record, "dpv:hasProcessingCondition", type);
}

// Every given consent must state its kind.
bool isConsentTyped(const json::object& record, std::string_view /*key*/) {
  bool areAll = true;
  forEachIn(record, "dpv:hasConsentStatus", [&](const json::value& element) {
    const auto* const status = element.if_object();
    if (status == nullptr) return;
    if (!hasType(*status, "dpv:ConsentGiven") && !hasType(*status, "dpv:RenewedConsentGiven")) return;
    areAll =
        areAll && (hasType(*status, "dpv:ExpressedConsent") || hasType(*status, "dpv:ExplicitlyExpressedConsent") ||
                   hasType(*status, "dpv:ImpliedConsent") || hasType(*status, "dpv:InformedConsent"));
  });
  return areAll || inProcesses(record, "dpv:hasLegalBasis");
}

struct Field {
  std::string_view term;
  bool (*isIn)(const json::object& record, std::string_view term);
  bool isForGdprOnly = false;
};

constexpr auto fields = std::to_array<Field>({
    {"dct:conformsTo", inRecord},
    {"dct:identifier", inRecord},
    {"dpv:hasDataSubject", inRecord},
    {"dpv:hasNotice", inRecord},
    {"dct:language", inNotices},
    {"dpv:hasProcess", inRecord},
    {"dpv:hasPurpose", inProcesses},
    {"dpv:hasPersonalData", inProcesses},
    {"dpv:StorageLocation", isStored},
    {"dpv:StorageDuration", isStored},
    {"dpv:hasDataController", inProcesses},
    {"dpv:hasRecipient", inProcesses},
    {"dpv:hasConsentControl", inProcesses},
    {"dpv:hasJurisdiction", inProcesses},
    {"dpv:hasRight", inProcesses},
    {"dpv:hasName", inEntities},
    {"dpv:hasIdentifier", inEntities},
    {"schema:contactPoint", inEntities},
    {"schema:address", inEntities},
    {"dpv:hasConsentStatus", inRecord},
    {"dpv:Consent", isConsentTyped},
    {"dpv:isIndicatedAtTime", inStatuses},
    {"dpv:isIndicatedBy", inStatuses},
    {"dpv:hasDuration", inStatuses},
    {"dpv:hasLegalBasis", inProcesses, true},
    {"dpv:hasDataSource", inProcesses, true},
    {"dpv:hasProcessing", inProcesses, true},
    {"dpv:ProcessingLocation", isProcessed, true},
    {"dpv:hasNecessity", inProcesses, true},
    {"dpv:hasAuthority", inProcesses, true},
});

}  // namespace

json::object prefixes() {
  return {{"dpv", "https://w3id.org/dpv#"},
          {"pd", "https://w3id.org/dpv/pd#"},
          {"loc", "https://w3id.org/dpv/loc#"},
          {"tech", "https://w3id.org/dpv/tech#"},
          {"eu-gdpr", "https://w3id.org/dpv/legal/eu/gdpr#"},
          {"dct", "http://purl.org/dc/terms/"},
          {"rdf", "http://www.w3.org/1999/02/22-rdf-syntax-ns#"},
          {"schema", "https://schema.org/"},
          {"quillon", "https://quillon.example/receipts#"}};
}

bool hasType(const json::object& object, std::string_view type) {
  bool isThere = false;
  forEachIn(object, "@type", [&](const json::value& each) {
    isThere = isThere || (each.is_string() && std::string_view(each.get_string()) == type);
  });
  return isThere;
}

std::vector<std::string> missingFields(const json::object& record, Profile profile) {
  std::vector<std::string> missing;
  for (const auto& field : fields) {
    if (field.isForGdprOnly && profile != Profile::euGdpr) continue;
    if (!field.isIn(record, field.term)) missing.emplace_back(field.term);
  }
  return missing;
}

}  // namespace quillon::proof
