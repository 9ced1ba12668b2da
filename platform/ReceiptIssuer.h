// Issues receipts, if linked.
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

// A data subject's decisions, from the store.
struct HistoryEvidence {
  // As JSON objects, oldest first: the members of a decision, with `number`, `notice` and `previous`.
  std::vector<std::string> entries = {};
  // Digest to the notice's canonical form, which is empty once it was evicted.
  std::map<std::string, std::string> notices = {};
  // The hash of the newest entry; nullopt without a chained one.
  std::optional<std::string> head = std::nullopt;
  // The number of damaged entries, which `entries` omits.
  std::int64_t damaged = 0;
  std::string subjectId = {};
  std::string applicationId = {};
  std::string language = {};
};

// The configured texts of a purpose, in the user's language.
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
  // The human-readable content of a document from issue(): for each purpose the newest decision. The error is a text
  // for the log.
  virtual std::expected<std::vector<ReceiptLine>, std::string> summary(std::string_view document,
                                                                       const ReceiptWords& words) = 0;
  // The thumbprint (RFC 7638) of the device's key, which is created if there is none.
  virtual std::expected<std::string, std::string> keyThumbprint(KeyStore& keys) = 0;
};

}  // namespace quillon
