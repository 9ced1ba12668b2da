#include "platform/linux/SuiteFile.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <thread>

#include "platform/linux/FileCalls.h"
#include "platform/linux/Ownership.h"
#include "platform/linux/SuiteLayout.h"

namespace quillon {

namespace {

static_assert(maximumSuiteFileBytes == 16384 * SuiteLayout::pageBytes);

std::unexpected<SqliteError> damaged(std::string text) {
  return std::unexpected(SqliteError{Recovery::replace, std::move(text)});
}

template <class Operation>
auto retryWhileHeld(SuiteFile::Deadline deadline, Operation operation) {
  constexpr std::chrono::milliseconds longestPause(16);
  for (std::chrono::milliseconds pause(1);; pause = std::min(pause * 2, longestPause)) {
    auto result = operation();
    if (result || result.error().recovery != Recovery::wait || std::chrono::steady_clock::now() >= deadline) {
      return result;
    }
    std::this_thread::sleep_for(pause);
  }
}

struct Row {
  std::string_view key, type, text;
};

// nullopt when the row is damaged.
SqliteResult<std::optional<Row>> verifiedRow(const SqliteStatement& statement) {
  std::array<std::string_view, 3> texts;
  for (int column = 0; auto& text : texts) {
    const auto read = statement.text(column++);
    if (!read) return std::unexpected(read.error());
    if (!*read) return std::nullopt;
    text = **read;
  }
  const auto [key, type, text] = texts;
  if (key.size() + text.size() > maximumEntryBytes) return std::nullopt;
  if (statement.integer(3) != storedChecksum(key, type, text)) return std::nullopt;
  return Row{key, type, text};
}

// The only row of a statement; 0 if it has none or is no number.
SqliteResult<std::int64_t> number(SqliteStatement& statement) {
  const auto row = statement.step();
  if (!row) return std::unexpected(row.error());
  const auto number = statement.integer(0);
  statement.reset();
  return number.value_or(0);
}

std::string printable(std::string_view key) {
  std::string text(key.substr(0, 64));
  std::ranges::replace_if(text, [](unsigned char c) { return c < 0x20 || c > 0x7e; }, '?');
  return text;
}

}  // namespace

SuiteFile::SuiteFile(std::filesystem::path path, SqliteDatabase database)
    : path_(std::move(path)), database_(std::move(database)) {}

SqliteResult<SuiteFile::Opened> SuiteFile::open(const std::filesystem::path& path, Deadline deadline) {
  const auto unavailable = [](std::string why) { return std::unexpected(SqliteError{Recovery::none, std::move(why)}); };
  struct stat status{};
  if (::lstat(path.c_str(), &status) != 0) {
    const auto recovery = errno == ENOENT ? Recovery::create : Recovery::none;
    return std::unexpected(SqliteError{recovery, systemError("open", path)});
  }
  if (!S_ISREG(status.st_mode)) return unavailable(systemError("open", path, EINVAL));
  if (!isTrustedOwner(status.st_uid)) return unavailable("open " + path.string() + ": it belongs to another user");
  if (static_cast<std::uint64_t>(status.st_size) > maximumSuiteFileBytes) {
    return damaged("it is larger than a store can be");
  }
  // Best effort, and never through a descriptor: closing it would release SQLite's locks on the file.
  if ((status.st_mode & 077) != 0) {
    [[maybe_unused]] const int closed = ::fchmodat(AT_FDCWD, path.c_str(), 0600, AT_SYMLINK_NOFOLLOW);
  }

  auto opened = retryWhileHeld(deadline, [&] { return tryOpen(path); });
  if (!opened && opened.error().recovery != Recovery::replace) {
    return std::unexpected(SqliteError{opened.error().recovery, "open " + path.string() + ": " + opened.error().text});
  }
  return opened;
}

SqliteResult<SuiteFile::Opened> SuiteFile::tryOpen(const std::filesystem::path& path) {
  auto database = SqliteDatabase::open(path);
  if (!database) return std::unexpected(database.error());
  if (auto done = SuiteLayout::prepare(*database); !done) return std::unexpected(done.error());
  return SuiteFile(path, std::move(*database)).checked();
}

// The connection is unusable afterwards.
SqliteResult<SuiteFile::Opened> SuiteFile::checked() {
  const auto journal = database_.ask("PRAGMA journal_mode=TRUNCATE");
  if (!journal) return std::unexpected(journal.error());
  if (*journal == "wal") {
    return std::unexpected(SqliteError{Recovery::wait, "another program has it open with a write-ahead log"});
  }
  if (*journal != "truncate") return damaged("its journal mode is " + *journal);
  const auto check = database_.ask("PRAGMA quick_check(1)");
  if (!check) return std::unexpected(check.error());
  if (*check != "ok") {
    // A damaged journal loses no consent: the entries are read, and the next update starts a new file.
    const auto entriesCheck = database_.ask("PRAGMA quick_check(entries)");
    if (!entriesCheck) return std::unexpected(entriesCheck.error());
    if (*entriesCheck != "ok") return damaged(*check);
  }
  // Also for an empty file: files are put in place complete, so an empty one has lost its content.
  const auto fault = SuiteLayout::fault(database_);
  if (!fault) return std::unexpected(fault.error());
  if (!fault->empty()) return damaged(*fault);
  // A changed format version in the header makes SQLite open the file read-only although permissions allow writing.
  if (database_.readOnly() && ::faccessat(AT_FDCWD, path_.c_str(), W_OK, AT_EACCESS) == 0) {
    return damaged("its header allows no writing");
  }

  if (auto done = prepareStatements(); !done) return std::unexpected(done.error());
  auto content = read();
  if (!content) return std::unexpected(content.error());
  if (*check != "ok") content->unreadable.push_back("the journal: " + *check);
  // SQLite reads a truncated last page as zeros, which can pass its check.
  if (truncated()) content->lose("the end of the file");
  return Opened{std::move(*this), std::move(*content)};
}

SqliteResult<> SuiteFile::prepareStatements() {
  struct Prepared {
    SqliteStatement& statement;
    std::string_view sql;
  };
  for (auto& [statement, sql] :
       {Prepared{version_, "PRAGMA data_version"}, Prepared{pageCount_, "PRAGMA page_count"},
        Prepared{begin_, "BEGIN IMMEDIATE"}, Prepared{beginReading_, "BEGIN"}, Prepared{commit_, "COMMIT"},
        Prepared{select_, "SELECT key, type, value, checksum FROM entries ORDER BY key"},
        Prepared{put_, SuiteLayout::put}, Prepared{remove_, "DELETE FROM entries WHERE key=?"}}) {
    auto prepared = database_.prepare(sql);
    if (!prepared) return std::unexpected(prepared.error());
    statement = std::move(*prepared);
  }
  return {};
}

SqliteResult<std::int64_t> SuiteFile::version() {
  return number(version_);
}

SqliteResult<SuiteContent> SuiteFile::read() {
  SuiteContent content;
  // Read before the rows: a commit in between is then read again, not missed.
  const auto seen = version();
  if (!seen) return std::unexpected(seen.error());
  content.version = *seen;

  struct Ended {
    SqliteStatement& statement;
    ~Ended() { statement.reset(); }
  } ended{select_};

  std::string previous;
  bool marked = false;
  for (std::size_t rows = 0;; ++rows) {
    const auto row = select_.step();
    if (!row) return std::unexpected(row.error());
    if (!*row) break;
    if (rows > maximumSuiteEntries) return damaged("it holds more entries than a store can");

    const auto read = verifiedRow(select_);
    if (!read) return std::unexpected(read.error());
    const auto& verified = *read;
    if (!marked) {
      if (!verified || verified->key != SuiteLayout::markerKey || verified->type != SuiteLayout::markerType ||
          verified->text != SuiteLayout::markerValue) {
        break;
      }
      marked = true;
      continue;
    }
    auto value = verified ? fromStored(verified->type, verified->text) : std::nullopt;
    if (!value || verified->key <= previous) {
      const auto named = select_.text(0);
      if (!named) return std::unexpected(named.error());
      const auto key = named->value_or("");
      // A duplicate key: the newer value is unknown.
      if (const auto twin = content.entries.find(key); twin != content.entries.end()) content.entries.erase(twin);
      content.lose(printable(key));
      continue;
    }
    previous = verified->key;
    content.entries.insert_or_assign(previous, std::move(*value));
  }
  if (!marked) return damaged("it has lost its first row");
  return content;
}

bool SuiteFile::truncated() {
  const auto pages = number(pageCount_);
  struct stat status{};
  if (!pages || ::stat(path_.c_str(), &status) != 0) return false;
  return status.st_size < *pages * static_cast<std::int64_t>(SuiteLayout::pageBytes);
}

SqliteResult<> SuiteFile::put(std::string_view key, const StoredValue& value) {
  return SuiteLayout::write(put_, key, value.type, value.text);
}

SqliteResult<> SuiteFile::remove(std::string_view key) {
  remove_.bind(0, key);
  return remove_.run();
}

SqliteResult<JournalPage> SuiteFile::readJournal(std::int64_t before, std::size_t count, Deadline deadline) {
  return retryWhileHeld(deadline, [&] { return journal_.read(database_, before, count); });
}

SqliteResult<JournalPage> SuiteFile::readNewest() {
  return journal_.read(database_, SuiteJournal::endOfNumbers, 1);
}

SqliteResult<> SuiteFile::commit(Deadline deadline) {
  auto done = retryWhileHeld(deadline, [this] { return commit_.run(); });
  if (done) journal_.transactionEnded(true);
  return done;
}

bool SuiteFile::rollback() {
  journal_.transactionEnded(false);
  // After some errors SQLite has already rolled back.
  if (database_.inTransaction()) {
    if (const auto done = database_.run("ROLLBACK"); !done) return false;
  }
  return !database_.inTransaction();
}

}  // namespace quillon
