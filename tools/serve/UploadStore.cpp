#include "tools/serve/UploadStore.h"

#include <sqlite3.h>

namespace quillon::tools {
namespace {

constexpr int kBusyTimeoutMilliseconds = 5000;
constexpr auto kSchema =
    "CREATE TABLE IF NOT EXISTS uploads("
    "id INTEGER PRIMARY KEY, received_at INTEGER NOT NULL, status INTEGER NOT NULL, body TEXT NOT NULL) STRICT";

using Statement = std::unique_ptr<sqlite3_stmt, int (*)(sqlite3_stmt*)>;

Statement prepare(sqlite3* database, const char* sql) {
  sqlite3_stmt* statement = nullptr;
  sqlite3_prepare_v2(database, sql, -1, &statement, nullptr);
  return {statement, &sqlite3_finalize};
}

std::string textOf(sqlite3_stmt* statement, int column) {
  const auto* const text = reinterpret_cast<const char*>(sqlite3_column_text(statement, column));
  return text ? std::string(text, static_cast<std::size_t>(sqlite3_column_bytes(statement, column))) : std::string();
}

}  // namespace

std::expected<std::unique_ptr<UploadStore>, std::string> UploadStore::open(const std::string& file, Access access) {
  const int flags = access == Access::readOnly ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE;
  sqlite3* database = nullptr;
  int code = sqlite3_open_v2(file.c_str(), &database, flags | SQLITE_OPEN_FULLMUTEX, nullptr);
  std::unique_ptr<UploadStore> store(new UploadStore(database));
  if (code == SQLITE_OK) {
    sqlite3_busy_timeout(database, kBusyTimeoutMilliseconds);
    if (access == Access::readWrite) code = sqlite3_exec(database, kSchema, nullptr, nullptr, nullptr);
  }
  if (code != SQLITE_OK) return std::unexpected(file + ": " + sqlite3_errmsg(database));
  return store;
}

UploadStore::~UploadStore() {
  sqlite3_close(database_);
}

std::expected<void, std::string> UploadStore::add(const Upload& upload) {
  const auto insert = prepare(database_, "INSERT INTO uploads(received_at, status, body) VALUES(?, ?, ?)");
  if (insert) {
    sqlite3_bind_int64(insert.get(), 1, upload.receivedAt);
    sqlite3_bind_int64(insert.get(), 2, upload.status);
    sqlite3_bind_text64(insert.get(), 3, upload.body.data(), upload.body.size(), SQLITE_STATIC, SQLITE_UTF8);
    if (sqlite3_step(insert.get()) == SQLITE_DONE) return {};
  }
  return std::unexpected(sqlite3_errmsg(database_));
}

std::expected<void, std::string> UploadStore::forEach(
    const std::function<std::expected<void, std::string>(const Upload&)>& visit) const {
  const auto select = prepare(database_, "SELECT id, received_at, status, body FROM uploads ORDER BY id");
  if (!select) return std::unexpected(sqlite3_errmsg(database_));
  int code = SQLITE_ROW;
  while ((code = sqlite3_step(select.get())) == SQLITE_ROW) {
    auto visited = visit({.id = sqlite3_column_int64(select.get(), 0),
                          .receivedAt = sqlite3_column_int64(select.get(), 1),
                          .status = sqlite3_column_int64(select.get(), 2),
                          .body = textOf(select.get(), 3)});
    if (!visited) return visited;
  }
  if (code != SQLITE_DONE) return std::unexpected(sqlite3_errmsg(database_));
  return {};
}

}  // namespace quillon::tools
