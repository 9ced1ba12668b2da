#include "platform/linux/SqliteDatabase.h"

#include <utility>

namespace quillon {

namespace {

Recovery recoveryFrom(int code) {
  switch (code & 0xff) {
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
      return Recovery::wait;
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
    // A table or column of our statements is missing.
    case SQLITE_ERROR:
    case SQLITE_SCHEMA:
    // Our tables have no constraint that our rows violate.
    case SQLITE_CONSTRAINT:
      return Recovery::replace;
    default:
      return code == SQLITE_IOERR_SHORT_READ ? Recovery::replace : Recovery::none;
  }
}

std::unexpected<SqliteError> failed(sqlite3* connection, int code) {
  // The connection's error text belongs to its last call only.
  const char* text = connection != nullptr && sqlite3_extended_errcode(connection) == code ? sqlite3_errmsg(connection)
                                                                                           : sqlite3_errstr(code);
  return std::unexpected(SqliteError{recoveryFrom(code), text});
}

}  // namespace

void SqliteStatement::bind(int parameter, std::string_view text) {
  // A null pointer would bind NULL instead of an empty text.
  const char* data = text.data() != nullptr ? text.data() : "";
  const int code =
      sqlite3_bind_text64(statement_.get(), parameter + 1, data, text.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
  if (code != SQLITE_OK) bindError_ = code;
}

void SqliteStatement::bind(int parameter, std::int64_t number) {
  const int code = sqlite3_bind_int64(statement_.get(), parameter + 1, number);
  if (code != SQLITE_OK) bindError_ = code;
}

SqliteResult<bool> SqliteStatement::step() {
  if (const int code = std::exchange(bindError_, SQLITE_OK); code != SQLITE_OK) return failed(nullptr, code);
  const int code = sqlite3_step(statement_.get());
  if (code == SQLITE_ROW) return true;
  auto result = code == SQLITE_DONE ? SqliteResult<bool>(false) : failed(sqlite3_db_handle(statement_.get()), code);
  reset();
  return result;
}

SqliteResult<> SqliteStatement::run() {
  const auto done = step();
  if (!done) return std::unexpected(done.error());
  return {};
}

SqliteResult<std::string_view> SqliteStatement::asText(int column) const {
  const auto* data = reinterpret_cast<const char*>(sqlite3_column_text(statement_.get(), column));
  if (data == nullptr) return failed(nullptr, SQLITE_NOMEM);
  return std::string_view(data, static_cast<std::size_t>(sqlite3_column_bytes(statement_.get(), column)));
}

SqliteResult<std::optional<std::string_view>> SqliteStatement::text(int column) const {
  if (sqlite3_column_type(statement_.get(), column) != SQLITE_TEXT) return std::nullopt;
  return asText(column);
}

std::optional<std::int64_t> SqliteStatement::integer(int column) const {
  if (sqlite3_column_type(statement_.get(), column) != SQLITE_INTEGER) return std::nullopt;
  return sqlite3_column_int64(statement_.get(), column);
}

SqliteResult<SqliteDatabase> SqliteDatabase::open(const std::filesystem::path& file) {
  sqlite3* connection = nullptr;
  const int code = sqlite3_open_v2(file.c_str(), &connection,
                                   SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOFOLLOW | SQLITE_OPEN_NOMUTEX |
                                       SQLITE_OPEN_PRIVATECACHE | SQLITE_OPEN_EXRESCODE,
                                   nullptr);
  SqliteDatabase database;
  database.connection_.reset(connection);
  if (code != SQLITE_OK) return failed(connection, code);
  return database;
}

void SqliteDatabase::trustNoSchema() noexcept {
  for (const int feature : {SQLITE_DBCONFIG_ENABLE_TRIGGER, SQLITE_DBCONFIG_ENABLE_VIEW}) {
    sqlite3_db_config(connection_.get(), feature, 0, nullptr);
  }
}

SqliteResult<> SqliteDatabase::run(const char* sql) {
  const int code = sqlite3_exec(connection_.get(), sql, nullptr, nullptr, nullptr);
  if (code != SQLITE_OK) return failed(connection_.get(), code);
  return {};
}

SqliteResult<SqliteStatement> SqliteDatabase::prepare(std::string_view sql) {
  sqlite3_stmt* statement = nullptr;
  const int code = sqlite3_prepare_v3(connection_.get(), sql.data(), static_cast<int>(sql.size()),
                                      SQLITE_PREPARE_PERSISTENT, &statement, nullptr);
  if (code != SQLITE_OK) return failed(connection_.get(), code);
  SqliteStatement prepared;
  prepared.statement_.reset(statement);
  return prepared;
}

SqliteResult<std::string> SqliteDatabase::ask(std::string_view sql) {
  auto statement = prepare(sql);
  if (!statement) return std::unexpected(statement.error());
  const auto row = statement->step();
  if (!row) return std::unexpected(row.error());
  if (!*row || sqlite3_column_type(statement->statement_.get(), 0) == SQLITE_NULL) return std::string();
  const auto text = statement->asText(0);
  if (!text) return std::unexpected(text.error());
  return std::string(*text);
}

bool SqliteDatabase::moved() const noexcept {
  int moved = 0;
  return sqlite3_file_control(connection_.get(), "main", SQLITE_FCNTL_HAS_MOVED, &moved) == SQLITE_OK && moved != 0;
}

}  // namespace quillon
