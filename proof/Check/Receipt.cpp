// Verifies one receipt.
#include <algorithm>
#include <unordered_set>

#include "core/Text/Sha256.h"
#include "proof/Check/SignedDocument.h"
#include "proof/Check/Verification.h"
#include "proof/Json/CanonicalJson.h"
#include "proof/Json/Members.h"
#include "proof/Json/Times.h"
#include "proof/Receipt/ConsentEvent.h"
#include "proof/Receipt/Vocabulary.h"

namespace quillon::proof {
namespace {

namespace json = boost::json;

class ReceiptCheck {
 public:
  ReceiptCheck(const json::object& receipt, const Expectations& expected, const std::optional<KnownHistory>& known,
               Findings& findings)
      : receipt_(receipt), expected_(expected), known_(known), findings_(findings) {}

  void run() {
    checkHeader();
    checkNoticeTexts();
    std::size_t count = 0;
    forEachIn(receipt_, "dpv:hasRecordOfActivity", [&](const json::value& record) {
      ++count;
      if (record.is_object()) {
        checkRecord(record.get_object());
      } else {
        fault("holds a record that is none");
      }
    });
    if (count == 0) fault("holds no record of a consent");
    if (known_) checkMembership();
  }

 private:
  void fault(std::string text) { findings_.fault("receipt", std::move(text)); }

  void checkHeader() {
    if (!hasType(receipt_, "dpv:ConsentReceipt")) fault("is not of the type dpv:ConsentReceipt");
    if (!textIn(receipt_, "dct:identifier")) fault("lacks the field dct:identifier");
    const auto profile = textIn(receipt_, "dct:conformsTo");
    if (profile != schema::receipt && profile != schema::receiptEuGdpr) {
      fault("conforms to no profile that is known here (dct:conformsTo)");
    }
    created_ = fromTimeText(textIn(receipt_, "dct:created").value_or(""));
    if (!created_) {
      fault("has no time of its creation (dct:created)");
    } else if (*created_ > expected_.now + clockTolerance) {
      fault("is from the future: " + timeText(*created_));
    }
  }

  // Every referenced notice must be included and match its hash; null marks one that the store has expired.
  void checkNoticeTexts() {
    const auto* const member = receipt_.if_contains(term::notices);
    if (member == nullptr || !member->is_object()) return;
    for (const auto& notice : member->get_object()) {
      const std::string hash(notice.key());
      notices_.insert(hash);
      if (notice.value().is_null()) {
        findings_.note("notice " + hash, "is not kept any more");
      } else if (sha256(canonicalJson(notice.value())) != hash) {
        findings_.fault("notice " + hash, "was changed");
      } else {
        findings_.holds("notice " + hash, "is what was shown");
      }
    }
  }

  void checkRecord(const json::object& record) {
    const auto profile = textIn(record, "dct:conformsTo");
    const std::string name = "record " + std::string(textIn(record, "dct:identifier").value_or("without identifier"));
    if (!hasType(record, "dpv:ConsentRecord")) findings_.fault(name, "is not of the type dpv:ConsentRecord");
    if (profile != schema::record && profile != schema::recordEuGdpr) {
      findings_.fault(name, "conforms to no profile that is known here (dct:conformsTo)");
    }
    std::vector<std::string_view> listed;
    forEachIn(record, term::missing, [&](const json::value& field) {
      if (field.is_string()) listed.emplace_back(field.get_string());
    });
    const auto missing = missingFields(record, profile == schema::recordEuGdpr ? Profile::euGdpr : Profile::generic);
    std::string said;
    for (const auto& field : missing) {
      if (std::ranges::find(listed, field) == listed.end()) {
        findings_.fault(name, "lacks the field " + field + ", and does not say so");
      } else {
        said += (said.empty() ? "" : ", ") + field;
      }
    }
    if (!said.empty()) findings_.note(name, "does not state these fields, and says so: " + said);
    if (missing.empty()) findings_.holds(name, "states every field that it must");
    forEachIn(record, "dpv:hasConsentStatus", [&](const json::value& status) {
      if (status.is_object()) checkStatus(name, status.get_object());
    });
  }

  // The status in the vocabulary's terms must match the history entry it was derived from.
  void checkStatus(const std::string& record, const json::object& status) {
    const auto* const decision = status.if_contains(term::decision);
    if (decision == nullptr || !decision->is_object()) {
      findings_.fault(record, "has a status without the entry of the history that it is from");
      return;
    }
    const auto& entry = decision->get_object();
    decisions_.push_back(&entry);
    const std::string name = nameOf(entry);
    if (!hasType(status, eventOf(entry).state)) findings_.fault(name, "was not what the receipt makes of it");
    const auto time = numberIn(entry, "time");
    if (!time || textIn(status, "dpv:isIndicatedAtTime") != timeText(*time)) {
      findings_.fault(name, "was not when the receipt says");
    } else if (created_ && *time > *created_) {
      findings_.note(name, "is younger than the receipt: the device's clock was set back");
    }
    const std::string notice(textIn(entry, "notice").value_or(""));
    if (isSha256(notice) && !notices_.contains(notice)) {
      findings_.fault("notice " + notice, "is missing; " + name + " answered it");
    }
  }

  void checkMembership() {
    const auto& history = known_->history;
    std::unordered_set<std::string> hashes;
    for (const auto& entry : history.entries) hashes.insert(entryHash(entry));
    const auto before = findings_.faults();
    for (const auto* decision : decisions_) {
      if (!hashes.contains(entryHash(*decision)))
        findings_.fault(nameOf(*decision), "of the receipt is not in the history");
    }
    const std::string head(textIn(receipt_, term::historyHead).value_or(""));
    if (known_->isOfSameMoment && head != history.state.head.value_or("")) {
      fault("is of another moment than the history: its newest hash is not the same");
    } else if (!head.empty() && !hashes.contains(head)) {
      fault("the newest entry that it knew is not in the history");
    }
    if (findings_.faults() == before) findings_.holds("receipt", "is a part of the history");
  }

  const json::object& receipt_;
  const Expectations& expected_;
  const std::optional<KnownHistory>& known_;
  Findings& findings_;
  std::optional<std::int64_t> created_;
  std::unordered_set<std::string> notices_;
  std::vector<const json::object*> decisions_;
};

}  // namespace

void checkReceipt(std::string_view document, const Expectations& expected, const std::optional<KnownHistory>& known,
                  Findings& findings) {
  const auto receipt = checkSigned("receipt", document, expected, findings);
  if (receipt) ReceiptCheck(receipt->content, expected, known, findings).run();
}

}  // namespace quillon::proof
