#include "platform/linux/SuiteLayout.h"

#include "platform/linux/StoredValue.h"

namespace quillon {

SqliteResult<> SuiteLayout::prepare(SqliteDatabase& database) {
  database.trustNoSchema();
  return database.run(
      "PRAGMA trusted_schema=OFF; PRAGMA cell_size_check=ON; PRAGMA secure_delete=ON; PRAGMA temp_store=MEMORY;"
      "PRAGMA synchronous=FULL; PRAGMA max_page_count=16384");
}

SqliteResult<std::string> SuiteLayout::fault(SqliteDatabase& database) {
  // A view of that name would not contain our rows, and without the primary keys a row could be duplicated.
  const auto tables = database.ask(
      "SELECT group_concat(type || ' ' || name || '(' || (SELECT ifnull(group_concat(name), '') FROM"
      " pragma_table_info(s.name) WHERE pk>0) || ')', ';') FROM sqlite_schema AS s"
      " WHERE name IN ('entries', 'journal') AND type IN ('table', 'view') ORDER BY name");
  if (!tables) return std::unexpected(tables.error());
  // Files of early versions have no journal.
  const bool areOurs = *tables == "table entries(key)" || *tables == "table entries(key);table journal(number)" ||
                       *tables == "table journal(number);table entries(key)";
  if (!areOurs) return "it is not laid out as a store";
  const auto triggers = database.ask(
      "SELECT group_concat(name) FROM sqlite_schema WHERE type='trigger' AND lower(tbl_name) IN ('entries',"
      " 'journal')");
  if (!triggers) return std::unexpected(triggers.error());
  return triggers->empty() ? std::string() : "a trigger changes what is written to it";
}

SqliteResult<> SuiteLayout::write(SqliteStatement& statement, std::string_view key, std::string_view type,
                                  std::string_view text) {
  statement.bind(0, key);
  statement.bind(1, type);
  statement.bind(2, text);
  statement.bind(3, std::int64_t{storedChecksum(key, type, text)});
  return statement.run();
}

}  // namespace quillon
