// The SQL common to both databases.
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
  // The columns in add()'s order.
  static constexpr std::string_view kColumns =
      "subject, tenant, application, kind, item, decided_at, status, essential, implicit, test, version, compliance, "
      "place, device, sdk_version, ad_id, received_at, cause, history_head";
  static constexpr std::size_t kColumnCount = 19;
  // Those of later versions, which an older table does not have.
  static constexpr std::string_view kLaterColumns[] = {"cause", "history_head"};
  static constexpr std::string_view kKey = "PRIMARY KEY (subject, tenant, application, kind, item, decided_at, status)";

  using Row = std::pair<const Upload*, const Decision*>;
  // Sorted by key, so that concurrent writers cannot deadlock.
  static std::vector<Row> rowsInOrder(std::span<const Upload> uploads);

  struct Result {
    std::vector<std::vector<std::string>> rows;
    std::int64_t affected = 0;
  };
  // Runs one statement with parameters $1, $2, … numbered by first appearance.
  virtual std::expected<Result, StoreError> query(std::string_view sql, std::span<const std::string> parameters) = 0;
};

}  // namespace quillon::receiver
