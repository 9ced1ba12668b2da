// RAII wrappers of an SQLite connection and its statements, with errors as values. Independent of what is stored.
#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <expected>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace quillon {

// The recovery that may help after a store error.
enum class Recovery {
  none,     // none: disk, space, permissions or memory
  wait,     // the file is locked; retry later
  create,   // no file at the path
  reopen,   // the connection is unusable, the file may be fine
  replace,  // the file is damaged or cannot be written
};

struct SqliteError {
  Recovery recovery;
  std::string text;
};

template <class T = void>
using SqliteResult = std::expected<T, SqliteError>;

// Not thread-safe, like its connection. Parameters and columns count from 0.
class SqliteStatement {
 public:
  void bind(int parameter, std::string_view text);
  void bind(int parameter, std::int64_t number);

  // True on a row, false at the end; after the end or an error it can be bound and run again.
  [[nodiscard]] SqliteResult<bool> step();

  // Runs a statement without results.
  [[nodiscard]] SqliteResult<> run();

  // Ends a run early; until then the connection keeps its lock.
  void reset() noexcept { sqlite3_reset(statement_.get()); }

  // nullopt when the column has another type. Valid until the next step or reset. An error means out of memory and says
  // nothing about the row.
  [[nodiscard]] SqliteResult<std::optional<std::string_view>> text(int column) const;
  [[nodiscard]] std::optional<std::int64_t> integer(int column) const;

 private:
  friend class SqliteDatabase;
  struct Finalize {
    void operator()(sqlite3_stmt* statement) const noexcept { sqlite3_finalize(statement); }
  };

  // The value as text, whatever its type; not for NULL.
  [[nodiscard]] SqliteResult<std::string_view> asText(int column) const;

  std::unique_ptr<sqlite3_stmt, Finalize> statement_;
  int bindError_ = SQLITE_OK;
};

// Not thread-safe; must not be used across a fork. Never waits for locks.
class SqliteDatabase {
 public:
  // The file must exist, and no component of the path may be a link. Read-only if the file permits no more.
  static SqliteResult<SqliteDatabase> open(const std::filesystem::path& file);

  // Disables foreign triggers and views.
  void trustNoSchema() noexcept;

  // Runs one or more statements without results.
  [[nodiscard]] SqliteResult<> run(const char* sql);

  [[nodiscard]] SqliteResult<SqliteStatement> prepare(std::string_view sql);

  // The first column of the first row, as text; empty without a row.
  [[nodiscard]] SqliteResult<std::string> ask(std::string_view sql);

  [[nodiscard]] bool readOnly() const noexcept { return sqlite3_db_readonly(connection_.get(), "main") == 1; }
  [[nodiscard]] bool inTransaction() const noexcept { return sqlite3_get_autocommit(connection_.get()) == 0; }
  // Whether the path no longer leads to the opened file.
  [[nodiscard]] bool moved() const noexcept;

 private:
  struct Close {
    // Defers closing until all statements are finalized, so members may be destroyed in any order.
    void operator()(sqlite3* connection) const noexcept { sqlite3_close_v2(connection); }
  };

  std::unique_ptr<sqlite3, Close> connection_;
};

}  // namespace quillon
