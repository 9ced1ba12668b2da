// The database file of one suite: its layout, how it is made, opened and checked, and what is done when it is damaged.
#pragma once

#include <chrono>
#include <cstdint>
#include <expected>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "platform/KeyValueSuite.h"
#include "platform/linux/Folder.h"
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
  enum class Fault { missing, damaged, unavailable };
  struct Failure {
    Fault fault;
    std::string text;
  };
  struct Opened;

  // Opens and checks the file, waiting for a writer until the deadline.
  static std::expected<Opened, Failure> open(const std::filesystem::path& path, Deadline deadline);

  // Makes a new file with these entries and this journal, complete and durable before it takes its place. What stands
  // at that place is kept as "<path>.damaged-<UTC>-<n>", with its journal; the name is returned, empty when nothing
  // stood there. The folder must be locked. On failure the place is as it was.
  static std::expected<std::filesystem::path, std::string> create(const std::filesystem::path& path,
                                                                  const SuiteEntries& entries,
                                                                  const std::vector<JournalRecord>& journal,
                                                                  const Folder& folder);

  [[nodiscard]] SqliteResult<std::int64_t> version();
  // An error that is damage() when the rows are not a suite's.
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
  [[nodiscard]] SqliteResult<JournalPage> readUnsettled() { return journal_.unsettled(database_); }
  // What can be had of the journal of a damaged file, oldest first.
  [[nodiscard]] std::vector<JournalRecord> salvageJournal() { return journal_.salvage(database_); }
  // Waits until the deadline for readers to let go; begin() is tried once, for the caller has better things to do
  // between.
  [[nodiscard]] SqliteResult<> commit(Deadline deadline);
  // False when the connection is of no more use.
  [[nodiscard]] bool rollback();

 private:
  SuiteFile(std::filesystem::path path, SqliteDatabase database);

  static SqliteResult<Opened> tryOpen(const std::filesystem::path& path);
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
