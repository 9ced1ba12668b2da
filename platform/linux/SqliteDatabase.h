// One SQLite connection and its statements, owned and with errors as values. Knows nothing of what is stored.
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

// What can help after an error of the store.
enum class Recovery {
  none,     // nothing of ours: the disk, its room, permissions or memory are at fault
  wait,     // somebody else holds the file; later may be better
  create,   // nothing stands at the path
  reopen,   // this connection is of no more use, but what stands at the path may be
  replace,  // what stands at the path is not what was written, or takes no more of it
};

struct SqliteError {
  Recovery recovery;
  std::string text;
};

template <class T = void>
using SqliteResult = std::expected<T, SqliteError>;

// Not thread-safe, as its connection. Parameters and columns count from 0.
class SqliteStatement {
 public:
  void bind(int parameter, std::string_view text);
  void bind(int parameter, std::int64_t number);

  // True when it stands on a row, false at the end; after that or an error it can be bound and run again.
  [[nodiscard]] SqliteResult<bool> step();

  // Ends a run early: until then the connection keeps its lock.
  void reset() noexcept { sqlite3_reset(statement_.get()); }

  // Nothing when the row holds another type. Valid until the next step or reset. An error, which says nothing about the
  // row, when there is no memory to read it in.
  [[nodiscard]] SqliteResult<std::optional<std::string_view>> text(int column) const;
  [[nodiscard]] std::optional<std::int64_t> integer(int column) const;

 private:
  friend class SqliteDatabase;
  struct Finalize {
    void operator()(sqlite3_stmt* statement) const noexcept { sqlite3_finalize(statement); }
  };

  // As text, whatever the type; not for NULL.
  [[nodiscard]] SqliteResult<std::string_view> asText(int column) const;

  std::unique_ptr<sqlite3_stmt, Finalize> statement_;
  int bindError_ = SQLITE_OK;
};

// Not thread-safe; must not be used across a fork. Never waits for another connection.
class SqliteDatabase {
 public:
  // The file must exist; no part of the path may be a link. Read-only when the file allows no more.
  static SqliteResult<SqliteDatabase> open(const std::filesystem::path& file);

  // Neither triggers nor views of whoever else had the file in hand are obeyed.
  void trustNoSchema() noexcept;

  // One or more statements without results.
  [[nodiscard]] SqliteResult<> run(const char* sql);

  [[nodiscard]] SqliteResult<SqliteStatement> prepare(std::string_view sql);

  // The first column of the first row, as text; empty when there is none.
  [[nodiscard]] SqliteResult<std::string> ask(std::string_view sql);

  [[nodiscard]] bool readOnly() const noexcept { return sqlite3_db_readonly(connection_.get(), "main") == 1; }
  [[nodiscard]] bool inTransaction() const noexcept { return sqlite3_get_autocommit(connection_.get()) == 0; }
  // The path no longer leads to the file that this connection opened.
  [[nodiscard]] bool moved() const noexcept;

 private:
  struct Close {
    // This one waits for statements that are finalized later, so members may be destroyed in any order.
    void operator()(sqlite3* connection) const noexcept { sqlite3_close_v2(connection); }
  };

  std::unique_ptr<sqlite3, Close> connection_;
};

}  // namespace quillon
