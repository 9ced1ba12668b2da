// What makes receipts, if it is linked.
#pragma once

#include <cstdint>
#include <expected>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "KeyStore.h"
#include "RandomSource.h"
#include "ReceiptSummary.h"
#include "quillon/DataController.h"

namespace quillon {

// What a store knows of a person's decisions.
struct HistoryEvidence {
  // As JSON objects, oldest first: the members of a decision, with `number`, `notice` and `previous`.
  std::vector<std::string> entries = {};
  // The notices by their hash, in their canonical form; empty for one that is gone by age.
  std::map<std::string, std::string> notices = {};
  // The hash of the newest entry; nullopt without a chained one.
  std::optional<std::string> head = std::nullopt;
  // The number of damaged entries, which are left out.
  std::int64_t damaged = 0;
  std::string subjectId = {};
  std::string applicationId = {};
  std::string language = {};
};

// What a configuration says of a purpose, in the user's language.
struct PurposeTexts {
  std::string name = {};
  std::string description = {};
  std::vector<std::string> recipients = {};
};

struct ReceiptRequest {
  HistoryEvidence evidence = {};
  std::vector<std::int64_t> purposes = {};  // empty: all that were decided
  std::map<std::int64_t, PurposeTexts> texts = {};
  std::optional<DataController> controller = std::nullopt;
  std::int64_t time = 0;  // seconds since 1970
};

// Thread-safe. Never throws.
class ReceiptIssuer {
 public:
  virtual ~ReceiptIssuer() = default;

  // A signed receipt as a JSON document. The error is a text for the log.
  virtual std::expected<std::string, std::string> issue(const ReceiptRequest& request, KeyStore& keys,
                                                        RandomSource& random) = 0;
  // What a document of issue() says, for people: of each purpose the newest decision. The error is a text for the log.
  virtual std::expected<std::vector<ReceiptLine>, std::string> summary(std::string_view document,
                                                                       const ReceiptWords& words) = 0;
  // What names the device's key, which is made if there is none: its thumbprint (RFC 7638).
  virtual std::expected<std::string, std::string> keyThumbprint(KeyStore& keys) = 0;
};

}  // namespace quillon
