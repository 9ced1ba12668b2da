// The human-readable content of a receipt.
#pragma once

#include <string>

namespace quillon {

// The summary's labels, in the user's language.
struct ReceiptWords {
  std::string receipt;
  std::string doesNotHold;
  std::string identifier;
  std::string madeOn;
  std::string madeBy;
  std::string newestEntry;
  std::string dataSubject;
  std::string purposes;
  std::string accepted;
  std::string rejected;
  std::string noAnswer;
  std::string unknownTime;
  std::string notStated;
  std::string controller;
  std::string recipients;
  std::string personalData;
  std::string legalBasis;
  std::string jurisdiction;
  std::string storageLocation;
  std::string retention;
  std::string withdrawal;
  std::string rights;
  std::string contact;
  std::string address;
  std::string notice;
  std::string notKept;
  std::string language;
  std::string details;
};

struct ReceiptLine {
  enum class Kind { title, section, fact, text, warning };
  Kind kind;
  std::string name;  // of a fact
  std::string text;

  bool operator==(const ReceiptLine&) const = default;
};

}  // namespace quillon
