// What a receipt says, for people.
#pragma once

#include <boost/json/object.hpp>
#include <string>
#include <vector>

#include "proof/Check/Findings.h"

namespace quillon::proof {

// Words of the page that are known in the user's language.
struct SummaryWords {
  std::string language = "en";
  bool isRightToLeft = false;
  std::string purposes = "Purposes";
  std::string accepted = "Accepted";
  std::string rejected = "Rejected";
  std::string details = "Details";
};

struct SummaryLine {
  enum class Kind { title, section, fact, text, warning };
  Kind kind;
  std::string name;  // of a fact
  std::string text;
};

// The findings are those of a check of the receipt; its faults come first. Takes any object.
[[nodiscard]] std::vector<SummaryLine> summaryOf(const boost::json::object& receipt, const Findings& findings,
                                                 const SummaryWords& words);

}  // namespace quillon::proof
