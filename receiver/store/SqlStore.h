// What both databases are asked in the same words.
#pragma once

#include <string_view>
#include <utility>

#include "receiver/store/DecisionStore.h"

namespace quillon::receiver {

class SqlStore : public DecisionStore {
 public:
  std::expected<void, StoreError> check() final;
  std::expected<std::vector<Upload>, StoreError> history(const Subject& subject) final;
  std::expected<std::int64_t, StoreError> erase(const Subject& subject) final;
  std::expected<std::vector<Answers>, StoreError> answers() final;
  std::expected<std::int64_t, StoreError> expire(std::int64_t receivedBefore) final;

 protected:
  // The columns in the order in which add() fills them.
  static constexpr std::string_view kColumns =
      "subject, tenant, application, kind, item, decided_at, status, essential, implicit, test, version, compliance, "
      "place, device, sdk_version, ad_id, received_at";
  static constexpr std::size_t kColumnCount = 17;
  static constexpr std::string_view kKey = "PRIMARY KEY (subject, tenant, application, kind, item, decided_at, status)";

  using Row = std::pair<const Upload*, const Decision*>;
  // In the order of the key, so that two writers that meet never wait for one another in a circle.
  static std::vector<Row> rowsInOrder(std::span<const Upload> uploads);

  struct Result {
    std::vector<std::vector<std::string>> rows;
    std::int64_t affected = 0;
  };
  // One statement with parameters $1, $2, … in the order of their first appearance.
  virtual std::expected<Result, StoreError> query(std::string_view sql, std::span<const std::string> parameters) = 0;
};

}  // namespace quillon::receiver
