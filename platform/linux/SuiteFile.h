// The database file of one suite, how it is opened and checked, and the reading and writing of its rows.
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

// Beyond these a file is not one of ours and counts as damaged; no update lets it grow so far.
constexpr std::uint64_t maximumSuiteFileBytes = 64 << 20;
constexpr std::size_t maximumSuiteEntries = 100'000;
// Of one key and the text of its value.
constexpr std::size_t maximumEntryBytes = 1 << 20;

struct SuiteContent {
  SuiteEntries entries;
  // Keys of rows that are not what was written, made printable. Their entries are absent, and the file must not be
  // written to: a search through the tree may miss what follows a changed key.
  std::vector<std::string> unreadable;
  // Of the connection that read it: changes when another connection has committed.
  std::int64_t version = 0;

  // Adds to what is unreadable something that may have held entries.
  void lose(std::string what) {
    unreadable.push_back(std::move(what));
    entries.insert_or_assign(std::string(lostEntriesKey), true);
  }
};

// An open and healthy file. Not thread-safe. Must not be used across a fork.
class SuiteFile {
 public:
  using Deadline = std::chrono::steady_clock::time_point;
  struct Opened;

  // Opens and checks the file, waiting for a writer until the deadline. What else is in the file is left alone, but for
  // triggers on our tables.
  static SqliteResult<Opened> open(const std::filesystem::path& path, Deadline deadline);

  [[nodiscard]] SqliteResult<std::int64_t> version();
  // The file is to be replaced when the rows are not a suite's.
  [[nodiscard]] SqliteResult<SuiteContent> read();

  // The path leads elsewhere, or nowhere.
  [[nodiscard]] bool moved() const noexcept { return database_.moved(); }
  // The file is shorter than its own header says; SQLite would not notice while it has the pages in memory.
  [[nodiscard]] bool truncated();

  [[nodiscard]] SqliteResult<> begin() { return database_.run("BEGIN IMMEDIATE"); }
  // What is read until the end of the transaction is of one moment.
  [[nodiscard]] SqliteResult<> beginReading() { return database_.run("BEGIN"); }
  [[nodiscard]] SqliteResult<> put(std::string_view key, const StoredValue& value);
  [[nodiscard]] SqliteResult<> remove(std::string_view key);
  [[nodiscard]] SqliteResult<> writeJournal(const SuiteUpdate& update) { return journal_.write(database_, update); }
  // Waits for a writer until the deadline.
  [[nodiscard]] SqliteResult<JournalPage> readJournal(std::int64_t before, std::size_t count, Deadline deadline);
  // One try.
  [[nodiscard]] SqliteResult<JournalPage> readUnmarked() { return journal_.unmarked(database_); }
  // What can be had of the journal of a damaged file, oldest first.
  [[nodiscard]] std::vector<JournalRecord> readableJournal() { return journal_.readableRecords(database_); }
  // Waits until the deadline for readers to let go; begin() is tried once, for the caller has better things to do
  // between.
  [[nodiscard]] SqliteResult<> commit(Deadline deadline);
  // False when the connection is of no more use.
  [[nodiscard]] bool rollback();

 private:
  SuiteFile(std::filesystem::path path, SqliteDatabase database);

  static SqliteResult<Opened> tryOpen(const std::filesystem::path& path);
  SqliteResult<Opened> checked();
  [[nodiscard]] SqliteResult<> prepareStatements();

  std::filesystem::path path_;
  SqliteDatabase database_;
  SqliteStatement version_;
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
