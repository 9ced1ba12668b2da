#include "proof/Page/Summary.h"

#include <algorithm>
#include <boost/json/serialize.hpp>
#include <string_view>

#include "proof/Json/Members.h"
#include "proof/Receipt/Vocabulary.h"

namespace quillon::proof {
namespace {

namespace json = boost::json;
using Kind = ReceiptLine::Kind;

// Accepts a text, an object with an identifier, value or type, or a list of these.
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

// The member's texts; empty if absent.
std::string statedIn(const json::object& object, std::string_view key) {
  const auto* const value = object.if_contains(key);
  return value != nullptr ? wordsOf(*value) : std::string();
}

// In the format "2026-11-26 11:24:22 UTC".
std::string momentOf(std::string time) {
  if (!time.ends_with('Z')) return time;
  time.pop_back();
  std::ranges::replace(time, 'T', ' ');
  return time + " UTC";
}

class Summary {
 public:
  enum class Extent { whole, newest };

  Summary(const json::object& receipt, const ReceiptWords& words, Extent extent)
      : receipt_(receipt), words_(words), isWhole_(extent == Extent::whole) {}

  std::vector<ReceiptLine> make(const Findings& findings) {
    lines_.push_back({Kind::title, "", words_.receipt});
    for (const auto& each : findings.all()) {
      if (each.kind == Finding::Kind::fault) {
        lines_.push_back({Kind::warning, "", words_.doesNotHold + ": " + each.subject + ": " + each.text});
      }
    }
    if (isWhole_) {
      addReceipt();
      section(words_.purposes);
    }
    forEachIn(receipt_, "dpv:hasRecordOfActivity", [&](const json::value& record) {
      if (record.is_object()) add(record.get_object());
    });
    if (isWhole_) addNotices();
    section(words_.details);
    for (const auto& each : findings.all()) {
      if (each.kind != Finding::Kind::fault) fact(each.subject, each.text);
    }
    if (isWhole_) {
      fact(words_.newestEntry, statedIn(receipt_, term::historyHead));
    } else {
      fact(words_.dataSubject, subject_);
      addReceipt();
    }
    return std::move(lines_);
  }

 private:
  void section(std::string text) { lines_.push_back({Kind::section, "", std::move(text)}); }
  void fact(std::string name, std::string text) {
    if (!text.empty()) lines_.push_back({Kind::fact, std::move(name), std::move(text)});
  }

  void addReceipt() {
    fact(words_.identifier, statedIn(receipt_, "dct:identifier"));
    fact(words_.madeOn, momentOf(statedIn(receipt_, "dct:created")));
    fact(words_.madeBy, statedIn(receipt_, "dct:creator"));
    fact(words_.controller, statedIn(receipt_, "dct:publisher"));
  }

  void add(const json::object& record) {
    const json::object* newest = nullptr;
    forEachIn(record, "dpv:hasConsentStatus", [&](const json::value& status) {
      if (status.is_object()) newest = &status.get_object();
    });
    forEachIn(record, "dpv:hasProcess", [&](const json::value& element) {
      if (element.is_object()) addPurpose(element.get_object(), newest);
    });
    if (const auto* const purpose = record.if_contains("dpv:hasPurpose")) section(wordsOf(*purpose));
    if (isWhole_) {
      forEachIn(record, "dpv:hasConsentStatus", [&](const json::value& status) {
        if (status.is_object()) addStatus(status.get_object());
      });
    }
    forEachIn(record, "dpv:hasEntity", [&](const json::value& entity) {
      if (entity.is_object()) addEntity(entity.get_object());
    });
    subject_ = statedIn(record, "dpv:hasDataSubject");
    if (!isWhole_) return;
    fact(words_.dataSubject, subject_);
    fact(words_.notStated, statedIn(record, term::missing));
  }

  void addPurpose(const json::object& process, const json::object* newest) {
    const auto* const purpose = process.if_contains("dpv:hasPurpose");
    if (purpose != nullptr) {
      section(wordsOf(*purpose));
      if (!isWhole_ && newest != nullptr) addStatus(*newest);
      if (const auto* const object = purpose->if_object(); object != nullptr && isWhole_) {
        const auto description = statedIn(*object, "dct:description");
        if (!description.empty()) lines_.push_back({Kind::text, "", description});
      }
    }
    fact(words_.controller, statedIn(process, "dpv:hasDataController"));
    fact(words_.recipients, statedIn(process, "dpv:hasRecipient"));
    fact(words_.personalData, statedIn(process, "dpv:hasPersonalData"));
    fact(words_.legalBasis, statedIn(process, "dpv:hasLegalBasis"));
    fact(words_.jurisdiction, statedIn(process, "dpv:hasJurisdiction"));
    forEachIn(process, "dpv:hasStorageCondition", [&](const json::value& condition) {
      if (!condition.is_object()) return;
      fact(words_.storageLocation, statedIn(condition.get_object(), "dpv:hasLocation"));
      fact(words_.retention, statedIn(condition.get_object(), "dpv:hasDuration"));
    });
    forEachIn(process, "dpv:hasConsentControl", [&](const json::value& control) {
      if (control.is_object()) fact(words_.withdrawal, statedIn(control.get_object(), "dpv:isExercisedAt"));
    });
    forEachIn(process, "dpv:hasRight", [&](const json::value& right) {
      if (right.is_object()) fact(words_.rights, statedIn(right.get_object(), "dpv:isExercisedAt"));
    });
  }

  void addStatus(const json::object& status) {
    const bool isGiven = hasType(status, "dpv:ConsentGiven") || hasType(status, "dpv:RenewedConsentGiven");
    const bool isRefused = hasType(status, "dpv:ConsentRefused") || hasType(status, "dpv:ConsentWithdrawn");
    std::string text = isGiven ? words_.accepted : isRefused ? words_.rejected : words_.noAnswer;
    if (isWhole_) {
      for (const auto& part : {statedIn(status, "@type"), statedIn(status, "dpv:hasIndicationMethod")}) {
        if (!part.empty()) text += " \u2013 " + part;
      }
    }
    const auto time = momentOf(statedIn(status, "dpv:isIndicatedAtTime"));
    fact(time.empty() ? words_.unknownTime : time, text);
  }

  void addEntity(const json::object& entity) {
    fact(words_.controller, statedIn(entity, "dpv:hasName"));
    for (const auto* key : {"schema:address", "schema:contactPoint"}) {
      forEachIn(entity, key, [&](const json::value& contact) {
        if (!contact.is_object()) return;
        for (const auto* part : {"schema:streetAddress", "schema:email", "schema:telephone"}) {
          fact(words_.contact, statedIn(contact.get_object(), part));
        }
      });
    }
    fact(words_.address, statedIn(entity, "schema:url"));
  }

  // What the user was shown, in display order.
  void addNotices() {
    const auto* const member = receipt_.if_contains(term::notices);
    if (member == nullptr || !member->is_object()) return;
    for (const auto& [hash, notice] : member->get_object()) {
      section(words_.notice + ' ' + std::string(hash));
      const auto* const shown = notice.if_object();
      if (shown == nullptr) {
        lines_.push_back({Kind::text, "", words_.notKept});
        continue;
      }
      fact(words_.language, statedIn(*shown, "language"));
      forEachIn(*shown, "texts", [&](const json::value& element) {
        const auto* const text = element.if_object();
        if (text == nullptr) return;
        fact(statedIn(*text, "role"), statedIn(*text, "text"));
        fact(words_.address, statedIn(*text, "address"));
      });
      forEachIn(*shown, "purposes", [&](const json::value& element) {
        if (const auto* const purpose = element.if_object()) {
          fact(statedIn(*purpose, "name"), statedIn(*purpose, "description"));
        }
      });
    }
  }

  const json::object& receipt_;
  const ReceiptWords& words_;
  const bool isWhole_;
  std::string subject_;
  std::vector<ReceiptLine> lines_;
};

}  // namespace

std::vector<ReceiptLine> summaryOf(const json::object& receipt, const Findings& findings, const ReceiptWords& words) {
  return Summary(receipt, words, Summary::Extent::whole).make(findings);
}

std::vector<ReceiptLine> shortSummaryOf(const json::object& receipt, const ReceiptWords& words) {
  return Summary(receipt, words, Summary::Extent::newest).make({});
}

}  // namespace quillon::proof
