// The consent record of one purpose.
#pragma once

#include <boost/json/object.hpp>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "platform/ReceiptIssuer.h"
#include "proof/History/Chain.h"
#include "proof/Receipt/Vocabulary.h"

namespace quillon::proof {

// Shared by the records of a receipt.
struct RecordContext {
  const ReceiptRequest& request;
  // The readable notices by their hash.
  const std::map<std::string, boost::json::object>& notices;
  Profile profile;
};

// Includes a list of missing mandatory fields. `entries` are the purpose's, oldest first, and not empty.
[[nodiscard]] boost::json::object consentRecord(const RecordContext& context, std::int64_t purposeId,
                                                const std::vector<const boost::json::object*>& entries);

}  // namespace quillon::proof
