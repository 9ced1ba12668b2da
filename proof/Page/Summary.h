// A receipt's content as readable lines.
#pragma once

#include <boost/json/object.hpp>
#include <vector>

#include "platform/ReceiptSummary.h"
#include "proof/Check/Findings.h"

namespace quillon::proof {

// The complete content. `findings` are from verifying the receipt; its faults come first. Accepts any object.
[[nodiscard]] std::vector<ReceiptLine> summaryOf(const boost::json::object& receipt, const Findings& findings,
                                                 const ReceiptWords& words);

// The newest decision on each purpose, who receives the data and why, without the notices. Accepts any object.
[[nodiscard]] std::vector<ReceiptLine> shortSummaryOf(const boost::json::object& receipt, const ReceiptWords& words);

}  // namespace quillon::proof
