// How the file of a suite is laid out, and whether a file is laid out so.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "platform/linux/SqliteDatabase.h"

namespace quillon {

struct SuiteLayout {
  static constexpr std::uint64_t pageBytes = 4096;

  // One tree, so that a small update writes few pages.
  static constexpr std::string_view entries =
      "CREATE TABLE entries(key TEXT PRIMARY KEY, type TEXT, value TEXT, checksum INTEGER) WITHOUT ROWID";

  // What a later version has put into further columns stays.
  static constexpr std::string_view put =
      "INSERT INTO entries(key, type, value, checksum) VALUES(?, ?, ?, ?) ON CONFLICT(key) DO UPDATE SET "
      "type=excluded.type, value=excluded.value, checksum=excluded.checksum";

  // This row tells a suite without entries from a file without content. It is the first in the order of keys.
  static constexpr std::string_view markerKey = "";
  static constexpr std::string_view markerType = "marker";
  static constexpr std::string_view markerValue = "1";

  // What SQLite keeps beside a file, and would play back into another one of that name.
  static constexpr std::array companions{"-journal", "-wal", "-shm"};

  // Every connection: nothing but our own statements runs, removed values are overwritten, a full file is a full disk.
  [[nodiscard]] static SqliteResult<> prepare(SqliteDatabase& database);

  // Empty when both tables are as we make them, or there is none for the journal yet, and nothing changes our rows
  // behind our back; other indexes, columns, tables and views may be there. Else what is wrong.
  [[nodiscard]] static SqliteResult<std::string> fault(SqliteDatabase& database);

  // Writes one row with its checksum; the statement is `put`.
  [[nodiscard]] static SqliteResult<> write(SqliteStatement& statement, std::string_view key, std::string_view type,
                                            std::string_view text);
};

}  // namespace quillon
