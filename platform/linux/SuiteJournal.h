// The journal table of a suite's database file.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/KeyValueSuite.h"
#include "platform/linux/SqliteDatabase.h"

namespace quillon {

// Every row has a checksum over number, mark and text. Not thread-safe, like its connection. Files from before journals
// get the table with their first record.
class SuiteJournal {
 public:
  static constexpr std::string_view schema =
      "CREATE TABLE journal(number INTEGER PRIMARY KEY, mark TEXT, text TEXT, checksum INTEGER)";

  // Above the number of every record of ours.
  static constexpr std::int64_t endOfNumbers = std::int64_t{1} << 62;

  // Within a transaction: clears, marks and appends, and drops the oldest rows beyond the limit.
  [[nodiscard]] SqliteResult<> write(SqliteDatabase& database, const SuiteUpdate& update);

  // Newest first; the table need not exist.
  [[nodiscard]] SqliteResult<JournalPage> read(SqliteDatabase& database, std::int64_t before, std::size_t count);

  // The newest `count` unmarked records, newest first; the table need not exist.
  [[nodiscard]] SqliteResult<JournalPage> unmarked(SqliteDatabase& database, std::size_t count);

  // Writes a record of another file with its number.
  [[nodiscard]] SqliteResult<> put(SqliteDatabase& database, const JournalRecord& record);

  // Every intact row still reachable in a damaged file, oldest first. Each damaged row is replaced by an empty one,
  // marked as lost, so that its number is not reused.
  [[nodiscard]] std::vector<JournalRecord> readableRecords(SqliteDatabase& database);

  void transactionEnded(bool committed);

 private:
  enum class Missing { create, leave };
  // The range of record numbers.
  struct Range {
    std::int64_t oldest;
    std::int64_t newest;
    bool mayBeFull() const;
  };
  // False without a table.
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
  bool created_ = false;  // by the current transaction
};

}  // namespace quillon
