// The database file of a suite: opening, checking, reading and writing rows.
#pragma once

#include <chrono>
#include <cstdint>
#include <expected>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "platform/KeyValueSuite.h"
#include "platform/linux/SqliteDatabase.h"
#include "platform/linux/StoredValue.h"
#include "platform/linux/SuiteJournal.h"

namespace quillon {

// A larger file is not ours and counts as damaged; updates keep it smaller.
constexpr std::uint64_t maximumSuiteFileBytes = 64 << 20;
constexpr std::size_t maximumSuiteEntries = 100'000;
// Limit of a key and its value's text.
constexpr std::size_t maximumEntryBytes = 1 << 20;

struct SuiteContent {
  SuiteEntries entries;
  // Printable keys of damaged rows. Their entries are absent. The file must not be written: a tree search may miss
  // entries after a changed key.
  std::vector<std::string> unreadable;
  // The reading connection's version; changes when another connection commits.
  std::int64_t version = 0;

  // Adds a part that may have held entries to `unreadable`.
  void lose(std::string what) {
    unreadable.push_back(std::move(what));
    entries.insert_or_assign(std::string(lostEntriesKey), true);
  }
};

// An open, healthy file. Not thread-safe. Must not be used across a fork.
class SuiteFile {
 public:
  using Deadline = std::chrono::steady_clock::time_point;
  struct Opened;

  // Opens and checks the file, waiting for a writer until the deadline. Foreign content is left alone, except triggers
  // on our tables.
  static SqliteResult<Opened> open(const std::filesystem::path& path, Deadline deadline);

  [[nodiscard]] SqliteResult<std::int64_t> version();
  // The error asks for replacement when the rows are not a suite's.
  [[nodiscard]] SqliteResult<SuiteContent> read();

  // Whether the path leads elsewhere, or nowhere.
  [[nodiscard]] bool moved() const noexcept { return database_.moved(); }
  // Whether the file is shorter than its header states; SQLite would not notice while the pages are cached.
  [[nodiscard]] bool truncated();

  [[nodiscard]] SqliteResult<> begin() { return begin_.run(); }
  // Reads until the end of the transaction see one consistent state.
  [[nodiscard]] SqliteResult<> beginReading() { return beginReading_.run(); }
  [[nodiscard]] SqliteResult<> put(std::string_view key, const StoredValue& value);
  [[nodiscard]] SqliteResult<> remove(std::string_view key);
  [[nodiscard]] SqliteResult<> writeJournal(const SuiteUpdate& update) { return journal_.write(database_, update); }
  // Waits for a writer until the deadline.
  [[nodiscard]] SqliteResult<JournalPage> readJournal(std::int64_t before, std::size_t count, Deadline deadline);
  // Does not wait.
  [[nodiscard]] SqliteResult<JournalPage> readUnmarked(std::size_t count) {
    return journal_.unmarked(database_, count);
  }
  // The newest record, as a page. Does not wait.
  [[nodiscard]] SqliteResult<JournalPage> readNewest();
  // The readable journal records of a damaged file, oldest first.
  [[nodiscard]] std::vector<JournalRecord> readableJournal() { return journal_.readableRecords(database_); }
  // Waits for readers until the deadline; begin() does not wait, so that the caller can release its locks in between.
  [[nodiscard]] SqliteResult<> commit(Deadline deadline);
  // False when the connection is unusable.
  [[nodiscard]] bool rollback();

 private:
  SuiteFile(std::filesystem::path path, SqliteDatabase database);

  static SqliteResult<Opened> tryOpen(const std::filesystem::path& path);
  SqliteResult<Opened> checked();
  [[nodiscard]] SqliteResult<> prepareStatements();

  std::filesystem::path path_;
  SqliteDatabase database_;
  SqliteStatement version_;
  SqliteStatement pageCount_;
  SqliteStatement begin_;
  SqliteStatement beginReading_;
  SqliteStatement commit_;
  SqliteStatement select_;
  SqliteStatement put_;
  SqliteStatement remove_;
  SuiteJournal journal_;
};

struct SuiteFile::Opened {
  SuiteFile file;
  SuiteContent content;
};

}  // namespace quillon
