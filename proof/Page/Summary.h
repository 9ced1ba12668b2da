// What a receipt says, for people.
#pragma once

#include <boost/json/object.hpp>
#include <vector>

#include "platform/ReceiptSummary.h"
#include "proof/Check/Findings.h"

namespace quillon::proof {

// All that it says. The findings are those of a check of the receipt; its faults come first. Takes any object.
[[nodiscard]] std::vector<ReceiptLine> summaryOf(const boost::json::object& receipt, const Findings& findings,
                                                 const ReceiptWords& words);

// The newest decision on each purpose, who gets the data and why, without what was shown. Takes any object.
[[nodiscard]] std::vector<ReceiptLine> shortSummaryOf(const boost::json::object& receipt, const ReceiptWords& words);

}  // namespace quillon::proof
