// The layout of a suite's file, and its check.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "platform/linux/SqliteDatabase.h"

namespace quillon {

struct SuiteLayout {
  static constexpr std::uint64_t pageBytes = 4096;

  // WITHOUT ROWID: one tree, so that a small update writes few pages.
  static constexpr std::string_view entries =
      "CREATE TABLE entries(key TEXT PRIMARY KEY, type TEXT, value TEXT, checksum INTEGER) WITHOUT ROWID";

  // Columns added by later versions are kept.
  static constexpr std::string_view put =
      "INSERT INTO entries(key, type, value, checksum) VALUES(?, ?, ?, ?) ON CONFLICT(key) DO UPDATE SET "
      "type=excluded.type, value=excluded.value, checksum=excluded.checksum";

  // Distinguishes a suite without entries from a file without content. First in key order.
  static constexpr std::string_view markerKey = "";
  static constexpr std::string_view markerType = "marker";
  static constexpr std::string_view markerValue = "1";

  // SQLite's companion files, which it would replay into another file of the same name.
  static constexpr std::array companions{"-journal", "-wal", "-shm"};

  // Settings of every connection: only our statements run, removed values are overwritten, the size limit acts as a
  // full disk.
  [[nodiscard]] static SqliteResult<> prepare(SqliteDatabase& database);

  // Empty when both tables have our layout (the journal may be missing) and nothing changes our rows; other indexes,
  // columns, tables and views are allowed. Otherwise the fault.
  [[nodiscard]] static SqliteResult<std::string> fault(SqliteDatabase& database);

  // Writes one row with its checksum; the statement is `put`.
  [[nodiscard]] static SqliteResult<> write(SqliteStatement& statement, std::string_view key, std::string_view type,
                                            std::string_view text);
};

}  // namespace quillon
