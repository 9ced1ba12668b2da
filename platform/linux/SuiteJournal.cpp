#include "platform/linux/SuiteJournal.h"

#include <algorithm>
#include <limits>
#include <map>

#include "platform/linux/StoredValue.h"

namespace quillon {

namespace {

std::int64_t checksum(std::int64_t number, std::string_view mark, std::string_view text) {
  return storedChecksum(std::to_string(number), mark, text);
}

// Adds the statement's current row, as a record or as a damaged one.
SqliteResult<> take(const SqliteStatement& row, JournalPage& page) {
  const auto number = row.integer(0);
  const auto readMark = row.text(1);
  if (!readMark) return std::unexpected(readMark.error());
  const auto readText = row.text(2);
  if (!readText) return std::unexpected(readText.error());
  const auto& mark = *readMark;
  const auto& text = *readText;
  const bool isSound = number && mark && text && text->size() <= maximumJournalTextBytes &&
                       row.integer(3) == checksum(*number, *mark, *text);
  if (isSound) {
    page.records.push_back({*number, std::string(*text), std::string(*mark)});
  } else {
    page.damaged.push_back(number.value_or(0));
  }
  return {};
}

// Reads rows until there are none or the page has `count` sound records.
SqliteResult<> collect(SqliteStatement& statement, JournalPage& page, std::size_t count = maximumJournalRecords) {
  while (page.records.size() < count) {
    const auto row = statement.step();
    if (!row) return std::unexpected(row.error());
    if (!*row) return {};
    if (auto taken = take(statement, page); !taken) {
      statement.reset();
      return taken;
    }
  }
  statement.reset();
  return {};
}

}  // namespace

SqliteResult<bool> SuiteJournal::prepare(SqliteDatabase& database, Missing missing) {
  if (statements_) return true;
  const auto known = database.ask("SELECT name FROM sqlite_schema WHERE name='journal'");
  if (!known) return std::unexpected(known.error());
  if (known->empty()) {
    if (missing == Missing::leave) return false;
    if (auto made = database.run(std::string(schema).c_str()); !made) return std::unexpected(made.error());
    created_ = true;
  }
  Statements fresh;
  struct Prepared {
    SqliteStatement& statement;
    std::string sql;
  };
  for (auto& [statement, sql] :
       {Prepared{fresh.page,
                 "SELECT number, mark, text, checksum FROM journal WHERE number<? ORDER BY number DESC LIMIT ?"},
        Prepared{fresh.unmarked, "SELECT number, mark, text, checksum FROM journal WHERE mark='' ORDER BY number DESC"},
        // Numbers above the range are not ours.
        Prepared{fresh.range,
                 "SELECT (SELECT min(number) FROM journal), "
                 "(SELECT max(number) FROM journal WHERE number<" +
                     std::to_string(endOfNumbers) + ")"},
        Prepared{fresh.put, "INSERT INTO journal(number, mark, text, checksum) VALUES(?, ?, ?, ?)"},
        Prepared{fresh.mark, "UPDATE journal SET mark=?, checksum=? WHERE number=?"}}) {
    auto prepared = database.prepare(sql);
    if (!prepared) return std::unexpected(prepared.error());
    statement = std::move(*prepared);
  }
  statements_.emplace(std::move(fresh));
  return true;
}

void SuiteJournal::transactionEnded(bool committed) {
  if (created_ && !committed) statements_.reset();
  created_ = false;
}

SqliteResult<> SuiteJournal::write(SqliteDatabase& database, const SuiteUpdate& update) {
  const auto missing = update.appended.empty() ? Missing::leave : Missing::create;
  const auto prepared = prepare(database, missing);
  if (!prepared) return std::unexpected(prepared.error());
  if (!*prepared) return {};
  if (update.clearsJournal) {
    if (auto done = database.run("DELETE FROM journal"); !done) return done;
  }
  if (!update.marks.empty()) {
    if (auto done = writeMarks(update); !done) return done;
  }
  return append(database, update.appended);
}

SqliteResult<> SuiteJournal::writeMarks(const SuiteUpdate& update) {
  JournalPage page;
  if (auto done = collect(statements_->unmarked, page); !done) return done;
  for (const auto& record : page.records) {
    const auto mark = update.marks.find(record.number);
    if (mark == update.marks.end() || mark->second.empty()) continue;
    statements_->mark.bind(0, mark->second);
    statements_->mark.bind(1, checksum(record.number, mark->second, record.text));
    statements_->mark.bind(2, record.number);
    if (auto done = statements_->mark.run(); !done) return done;
  }
  return {};
}

SqliteResult<> SuiteJournal::append(SqliteDatabase& database, const std::vector<std::string>& texts) {
  auto present = range();
  for (const auto& text : texts) {
    if (present && present->mayBeFull()) {
      if (auto done = dropOldest(database); !done) return done;
      present = range();
    }
    if (!present) return std::unexpected(present.error());
    if (auto done = put(database, {++present->newest, text, {}}); !done) return done;
  }
  return {};
}

SqliteResult<> SuiteJournal::put(SqliteDatabase& database, const JournalRecord& record) {
  if (auto prepared = prepare(database, Missing::create); !prepared) return std::unexpected(prepared.error());
  auto& statement = statements_->put;
  statement.bind(0, record.number);
  statement.bind(1, record.mark);
  statement.bind(2, record.text);
  statement.bind(3, checksum(record.number, record.mark, record.text));
  return statement.run();
}

SqliteResult<SuiteJournal::Range> SuiteJournal::range() {
  const auto row = statements_->range.step();
  if (!row) return std::unexpected(row.error());
  const Range range{statements_->range.integer(0).value_or(1), statements_->range.integer(1).value_or(0)};
  statements_->range.reset();
  return range;
}

bool SuiteJournal::Range::mayBeFull() const {
  return oldest < 0 || newest - oldest >= static_cast<std::int64_t>(maximumJournalRecords) - 1;
}

SqliteResult<> SuiteJournal::dropOldest(SqliteDatabase& database) {
  // Damaged numbers may be far apart, so count the rows before dropping any.
  const auto counted = database.ask("SELECT count(*) FROM journal");
  if (!counted) return std::unexpected(counted.error());
  const std::int64_t excess = std::stoll(*counted) - static_cast<std::int64_t>(maximumJournalRecords);
  if (excess < 0) return {};
  return database.run(("DELETE FROM journal WHERE number IN (SELECT number FROM journal ORDER BY number LIMIT " +
                       std::to_string(excess + static_cast<std::int64_t>(journalRecordsDroppedAtOnce)) + ")")
                          .c_str());
}

SqliteResult<JournalPage> SuiteJournal::read(SqliteDatabase& database, std::int64_t before, std::size_t count) {
  JournalPage page;
  const auto prepared = prepare(database, Missing::leave);
  if (!prepared) return std::unexpected(prepared.error());
  if (!*prepared) return page;
  statements_->page.bind(0, before);
  statements_->page.bind(1, static_cast<std::int64_t>(std::min(count, maximumJournalRecords)));
  if (auto done = collect(statements_->page, page); !done) return std::unexpected(done.error());
  return page;
}

SqliteResult<JournalPage> SuiteJournal::unmarked(SqliteDatabase& database, std::size_t count) {
  JournalPage page;
  const auto prepared = prepare(database, Missing::leave);
  if (!prepared) return std::unexpected(prepared.error());
  if (!*prepared) return page;
  if (auto done = collect(statements_->unmarked, page, count); !done) return std::unexpected(done.error());
  return page;
}

std::vector<JournalRecord> SuiteJournal::readableRecords(SqliteDatabase& database) {
  JournalPage page;
  if (const auto prepared = prepare(database, Missing::leave); prepared && *prepared) {
    statements_->page.bind(0, std::numeric_limits<std::int64_t>::max());
    statements_->page.bind(1, static_cast<std::int64_t>(maximumJournalRecords));
    // After an error, the rows read so far are kept.
    if (const auto done = collect(statements_->page, page); !done) statements_->page.reset();
  }
  std::map<std::int64_t, JournalRecord> sound;
  for (auto& record : page.records) sound.try_emplace(record.number, std::move(record));
  // A damaged row's number may be arbitrary; only plausible ones are kept.
  const std::int64_t most = (sound.empty() ? 0 : sound.rbegin()->first) + std::ssize(page.damaged);
  for (const auto number : page.damaged) {
    if (number > 0 && number <= most) sound.try_emplace(number, JournalRecord{number, {}, "lost"});
  }
  std::vector<JournalRecord> records;
  records.reserve(sound.size());
  for (auto& [number, record] : sound) records.push_back(std::move(record));
  return records;
}

}  // namespace quillon
