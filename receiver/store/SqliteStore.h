#pragma once

#include <filesystem>

#include "receiver/store/SqlStore.h"

struct sqlite3;
struct sqlite3_stmt;

namespace quillon::receiver {

// A file in a local folder, which several processes may open.
class SqliteStore final : public SqlStore {
 public:
  // Creates missing parts, accessible to this user only.
  [[nodiscard]] static std::expected<std::unique_ptr<DecisionStore>, StoreError> open(
      const std::filesystem::path& folder);
  ~SqliteStore() override;
  SqliteStore(const SqliteStore&) = delete;
  SqliteStore& operator=(const SqliteStore&) = delete;

  std::expected<std::int64_t, StoreError> add(std::span<const Upload> uploads) override;

 private:
  SqliteStore() = default;

  std::expected<Result, StoreError> query(std::string_view sql, std::span<const std::string> parameters) override;
  std::expected<void, StoreError> execute(const char* sql);
  std::expected<void, StoreError> addLaterColumns();
  bool insert(const Upload& upload, const Decision& decision);
  StoreError error() const;

  sqlite3* database_ = nullptr;
  sqlite3_stmt* insert_ = nullptr;
};

}  // namespace quillon::receiver
