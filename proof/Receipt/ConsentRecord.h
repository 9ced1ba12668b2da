// The record of one purpose's consent.
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

// What the records of a receipt share.
struct RecordContext {
  const ReceiptRequest& request;
  // The notices that could be read, by their hash.
  const std::map<std::string, boost::json::object>& notices;
  Profile profile;
};

// Lists what is missing. The entries are those on the purpose, oldest first, and not none.
[[nodiscard]] boost::json::object consentRecord(const RecordContext& context, std::int64_t purposeId,
                                                const std::vector<const boost::json::object*>& entries);

}  // namespace quillon::proof
