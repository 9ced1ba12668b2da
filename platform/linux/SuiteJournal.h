// The journal of a suite as a table of its database file.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/KeyValueSuite.h"
#include "platform/linux/SqliteDatabase.h"

namespace quillon {

// Every row carries a checksum over number, mark and text. Not thread-safe, as its connection. A file made before there
// were journals gets the table with its first record.
class SuiteJournal {
 public:
  static constexpr std::string_view schema =
      "CREATE TABLE journal(number INTEGER PRIMARY KEY, mark TEXT, text TEXT, checksum INTEGER)";

  // Within a transaction. Clears, settles and appends, and drops the oldest rows when there are too many.
  [[nodiscard]] SqliteResult<> write(SqliteDatabase& database, const SuiteUpdate& update);

  // Newest first; the table need not exist.
  [[nodiscard]] SqliteResult<JournalPage> read(SqliteDatabase& database, std::int64_t before, std::size_t count);

  // Those without a mark, newest first; the table need not exist.
  [[nodiscard]] SqliteResult<JournalPage> unmarked(SqliteDatabase& database);

  // Writes a record of another file under its own number.
  [[nodiscard]] SqliteResult<> put(SqliteDatabase& database, const JournalRecord& record);

  // Every sound row that can still be reached in a file that is damaged, oldest first.
  [[nodiscard]] std::vector<JournalRecord> readableRecords(SqliteDatabase& database);

  void transactionEnded(bool committed);

 private:
  enum class Missing { create, leave };
  // Of the numbers of its records.
  struct Range {
    std::int64_t oldest;
    std::int64_t newest;
    bool mayBeFull() const;
  };
  // False when there is no table.
  [[nodiscard]] SqliteResult<bool> prepare(SqliteDatabase& database, Missing missing);
  [[nodiscard]] SqliteResult<> writeMarks(const SuiteUpdate& update);
  [[nodiscard]] SqliteResult<> append(SqliteDatabase& database, const std::vector<std::string>& texts);
  [[nodiscard]] SqliteResult<Range> range();
  [[nodiscard]] SqliteResult<> dropOldest(SqliteDatabase& database);

  struct Statements {
    SqliteStatement page;
    SqliteStatement unmarked;
    SqliteStatement range;
    SqliteStatement put;
    SqliteStatement mark;
  };
  std::optional<Statements> statements_;
  bool created_ = false;  // by the transaction under way
};

}  // namespace quillon
