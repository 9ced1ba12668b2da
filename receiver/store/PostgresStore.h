#pragma once

#include "receiver/store/PostgresConnection.h"
#include "receiver/store/SqlStore.h"

namespace quillon::receiver {

// A PostgreSQL server, or one that speaks its protocol.
class PostgresStore final : public SqlStore {
 public:
  // Creates the table if missing: partitioned by subject if supported, else plain.
  [[nodiscard]] static std::expected<std::unique_ptr<DecisionStore>, StoreError> open(const std::string& address);

  std::expected<std::int64_t, StoreError> add(std::span<const Upload> uploads) override;

 private:
  explicit PostgresStore(std::unique_ptr<PostgresConnection> connection) : connection_(std::move(connection)) {}

  std::expected<Result, StoreError> query(std::string_view sql, std::span<const std::string> parameters) override;
  std::expected<void, StoreError> makeTable();
  std::expected<void, StoreError> addLaterColumns();
  std::expected<void, StoreError> makeDurable();

  std::unique_ptr<PostgresConnection> connection_;
};

}  // namespace quillon::receiver
