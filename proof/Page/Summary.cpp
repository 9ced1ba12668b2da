#include "proof/Page/Summary.h"

#include <boost/json/serialize.hpp>
#include <set>
#include <string_view>

#include "proof/Json/Members.h"
#include "proof/Receipt/Vocabulary.h"

namespace quillon::proof {
namespace {

namespace json = boost::json;
using Kind = SummaryLine::Kind;

// A value that may be a text, an object with an identifier, a value or a type, or a list of such.
std::string wordsOf(const json::value& value) {
  if (const auto* const text = value.if_string()) return std::string(*text);
  std::string all;
  if (const auto* const array = value.if_array()) {
    for (const auto& element : *array) {
      const auto words = wordsOf(element);
      if (!all.empty() && !words.empty()) all += ", ";
      all += words;
    }
    return all;
  }
  const auto* const object = value.if_object();
  if (object == nullptr) return value.is_null() ? std::string() : json::serialize(value);
  for (const auto* key : {"dct:title", "dpv:hasName", "dct:identifier", "rdf:value", "dpv:isExercisedAt", "@id"}) {
    if (const auto text = textIn(*object, key)) return std::string(*text);
  }
  return all;
}

// Of the first of the names that is there.
std::string statedIn(const json::object& object, std::string_view key) {
  const auto* const value = object.if_contains(key);
  return value != nullptr ? wordsOf(*value) : std::string();
}

class Summary {
 public:
  Summary(const json::object& receipt, const SummaryWords& words) : receipt_(receipt), words_(words) {}

  std::vector<SummaryLine> make(const Findings& findings) {
    lines_.push_back({Kind::title, "", "Consent receipt"});
    for (const auto& each : findings.all()) {
      if (each.kind == Finding::Kind::fault) {
        lines_.push_back({Kind::warning, "", "Does not hold: " + each.subject + ": " + each.text});
      }
    }
    fact("Receipt", statedIn(receipt_, "dct:identifier"));
    fact("Made", statedIn(receipt_, "dct:created"));
    fact("By", statedIn(receipt_, "dct:creator"));
    fact("For", statedIn(receipt_, "dct:publisher"));
    lines_.push_back({Kind::section, "", words_.purposes});
    forEachIn(receipt_, "dpv:hasRecordOfActivity", [&](const json::value& record) {
      if (record.is_object()) add(record.get_object());
    });
    addNotices();
    lines_.push_back({Kind::section, "", words_.details});
    for (const auto& each : findings.all()) {
      if (each.kind != Finding::Kind::fault) fact(each.subject, each.text);
    }
    fact("Newest entry of the history", statedIn(receipt_, term::historyHead));
    return std::move(lines_);
  }

 private:
  void fact(std::string name, std::string text) {
    if (!text.empty()) lines_.push_back({Kind::fact, std::move(name), std::move(text)});
  }

  void add(const json::object& record) {
    forEachIn(record, "dpv:hasProcess", [&](const json::value& element) {
      if (element.is_object()) addPurpose(element.get_object());
    });
    if (const auto* const purpose = record.if_contains("dpv:hasPurpose")) {
      lines_.push_back({Kind::section, "", wordsOf(*purpose)});
    }
    forEachIn(record, "dpv:hasConsentStatus", [&](const json::value& status) {
      if (status.is_object()) addStatus(status.get_object());
    });
    forEachIn(record, "dpv:hasEntity", [&](const json::value& entity) {
      if (entity.is_object()) addEntity(entity.get_object());
    });
    fact("User", statedIn(record, "dpv:hasDataSubject"));
    fact("Not stated", statedIn(record, term::missing));
  }

  void addPurpose(const json::object& process) {
    const auto* const purpose = process.if_contains("dpv:hasPurpose");
    if (purpose != nullptr) {
      lines_.push_back({Kind::section, "", wordsOf(*purpose)});
      if (const auto* const object = purpose->if_object()) {
        const auto description = statedIn(*object, "dct:description");
        if (!description.empty()) lines_.push_back({Kind::text, "", description});
      }
    }
    fact("Controller", statedIn(process, "dpv:hasDataController"));
    fact("Recipients", statedIn(process, "dpv:hasRecipient"));
    fact("Data", statedIn(process, "dpv:hasPersonalData"));
    fact("Legal basis", statedIn(process, "dpv:hasLegalBasis"));
    fact("Jurisdiction", statedIn(process, "dpv:hasJurisdiction"));
    forEachIn(process, "dpv:hasStorageCondition", [&](const json::value& condition) {
      if (!condition.is_object()) return;
      fact("Stored in", statedIn(condition.get_object(), "dpv:hasLocation"));
      fact("Stored for", statedIn(condition.get_object(), "dpv:hasDuration"));
    });
    forEachIn(process, "dpv:hasConsentControl", [&](const json::value& control) {
      if (control.is_object()) fact("Withdrawn at", statedIn(control.get_object(), "dpv:isExercisedAt"));
    });
    forEachIn(process, "dpv:hasRight", [&](const json::value& right) {
      if (right.is_object()) fact("Rights", statedIn(right.get_object(), "dpv:isExercisedAt"));
    });
  }

  void addStatus(const json::object& status) {
    const bool isGiven = hasType(status, "dpv:ConsentGiven") || hasType(status, "dpv:RenewedConsentGiven");
    const bool isRefused = hasType(status, "dpv:ConsentRefused") || hasType(status, "dpv:ConsentWithdrawn");
    std::string text = isGiven ? words_.accepted : isRefused ? words_.rejected : "No answer of the user's";
    for (const auto& part : {statedIn(status, "@type"), statedIn(status, "dpv:hasIndicationMethod")}) {
      if (!part.empty()) text += " \u2013 " + part;
    }
    const auto time = statedIn(status, "dpv:isIndicatedAtTime");
    fact(time.empty() ? "At an unknown time" : time, text);
  }

  void addEntity(const json::object& entity) {
    fact("Controller", statedIn(entity, "dpv:hasName"));
    for (const auto* key : {"schema:address", "schema:contactPoint"}) {
      forEachIn(entity, key, [&](const json::value& contact) {
        if (!contact.is_object()) return;
        for (const auto* part : {"schema:streetAddress", "schema:email", "schema:telephone"}) {
          fact("Contact", statedIn(contact.get_object(), part));
        }
      });
    }
    fact("Address", statedIn(entity, "schema:url"));
  }

  // What the user saw, in the order in which it was shown.
  void addNotices() {
    const auto* const member = receipt_.if_contains(term::notices);
    if (member == nullptr || !member->is_object()) return;
    for (const auto& [hash, notice] : member->get_object()) {
      lines_.push_back({Kind::section, "", "Notice " + std::string(hash)});
      const auto* const shown = notice.if_object();
      if (shown == nullptr) {
        lines_.push_back({Kind::text, "", "Not kept any more."});
        continue;
      }
      fact("Screen", statedIn(*shown, "screen"));
      fact("Language", statedIn(*shown, "language"));
      forEachIn(*shown, "texts", [&](const json::value& element) {
        const auto* const text = element.if_object();
        if (text == nullptr) return;
        fact(statedIn(*text, "role"), statedIn(*text, "text"));
        fact("address", statedIn(*text, "address"));
      });
      forEachIn(*shown, "purposes", [&](const json::value& element) {
        if (const auto* const purpose = element.if_object()) {
          fact(statedIn(*purpose, "name"), statedIn(*purpose, "description"));
        }
      });
    }
  }

  const json::object& receipt_;
  const SummaryWords& words_;
  std::vector<SummaryLine> lines_;
};

}  // namespace

std::vector<SummaryLine> summaryOf(const json::object& receipt, const Findings& findings, const SummaryWords& words) {
  return Summary(receipt, words).make(findings);
}

}  // namespace quillon::proof
