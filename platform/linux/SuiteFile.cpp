#include "platform/linux/SuiteFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <ctime>
#include <thread>

#include "platform/linux/FileCalls.h"
#include "platform/linux/Ownership.h"

namespace quillon {

namespace {

constexpr std::uint64_t pageBytes = 4096;
static_assert(maximumSuiteFileBytes == 16384 * pageBytes);

// One tree, so that a small update writes few pages.
constexpr std::string_view entriesSchema =
    "CREATE TABLE entries(key TEXT PRIMARY KEY, type TEXT, value TEXT, checksum INTEGER) WITHOUT ROWID";

// Every connection: nothing but our own statements runs, removed values are overwritten, a full file is a full disk.
constexpr const char* settings =
    "PRAGMA trusted_schema=OFF; PRAGMA cell_size_check=ON; PRAGMA secure_delete=ON; PRAGMA temp_store=MEMORY;"
    "PRAGMA synchronous=FULL; PRAGMA max_page_count=16384";

constexpr const char* putStatement = "REPLACE INTO entries VALUES(?, ?, ?, ?)";

// This row tells a suite without entries from a file without content. It is the first in the order of keys.
constexpr std::string_view markerKey = "";
constexpr std::string_view markerType = "marker";
constexpr std::string_view markerValue = "1";

constexpr std::array companions{"-journal", "-wal", "-shm"};

std::filesystem::path withSuffix(std::filesystem::path path, std::string_view suffix) {
  path += suffix;
  return path;
}

bool isThere(const std::filesystem::path& path) {
  struct stat status{};
  return ::lstat(path.c_str(), &status) == 0;
}

std::unexpected<SqliteError> damaged(std::string text) {
  return std::unexpected(SqliteError{SQLITE_CORRUPT, std::move(text)});
}

template <class Operation>
auto retryWhileBusy(SuiteFile::Deadline deadline, Operation operation) {
  for (;;) {
    auto result = operation();
    if (result || !result.error().busy() || std::chrono::steady_clock::now() >= deadline) return result;
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
}

SqliteResult<> putRow(SqliteStatement& put, std::string_view key, std::string_view type, std::string_view text) {
  put.bind(0, key);
  put.bind(1, type);
  put.bind(2, text);
  put.bind(3, std::int64_t{storedChecksum(key, type, text)});
  const auto done = put.step();
  if (!done) return std::unexpected(done.error());
  return {};
}

struct Row {
  std::string_view key, type, text;
};

// Nothing when the row is not what was written.
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

std::string printable(std::string_view key) {
  std::string text(key.substr(0, 64));
  std::ranges::replace_if(text, [](unsigned char c) { return c < 0x20 || c > 0x7e; }, '?');
  return text;
}

SqliteResult<> fill(SqliteDatabase& database, const SuiteEntries& entries, const std::vector<JournalRecord>& records) {
  if (auto done = database.run(settings); !done) return done;
  // No journal file: nobody else knows the file yet, and when this fails it is thrown away.
  if (auto done = database.run("PRAGMA page_size=4096; PRAGMA journal_mode=MEMORY; BEGIN IMMEDIATE"); !done)
    return done;
  if (auto done = database.run(std::string(entriesSchema).c_str()); !done) return done;
  {
    auto put = database.prepare(putStatement);
    if (!put) return std::unexpected(put.error());
    if (auto done = putRow(*put, markerKey, markerType, markerValue); !done) return done;
    for (const auto& [key, value] : entries) {
      const auto [type, text] = toStored(value);
      if (auto done = putRow(*put, key, type, text); !done) return done;
    }
  }
  if (auto done = database.run(std::string(SuiteJournal::schema).c_str()); !done) return done;
  {
    SuiteJournal journal;
    for (const auto& record : records) {
      if (auto done = journal.put(database, record); !done) return done;
    }
  }
  return database.run("COMMIT");
}

std::expected<void, std::string> makeFile(const std::filesystem::path& path, const SuiteEntries& entries,
                                          const std::vector<JournalRecord>& journal) {
  if (::unlink(path.c_str()) != 0 && errno != ENOENT) return std::unexpected(systemError("remove", path));
  // Made without opening it, with a mode that neither SQLite nor the umask has a say in.
  if (::mknod(path.c_str(), S_IFREG | 0600, 0) != 0 ||
      ::fchmodat(AT_FDCWD, path.c_str(), 0600, AT_SYMLINK_NOFOLLOW) != 0) {
    return std::unexpected(systemError("create", path));
  }
  auto database = SqliteDatabase::open(path);
  if (!database) return std::unexpected("open " + path.string() + ": " + database.error().text);
  if (auto filled = fill(*database, entries, journal); !filled) {
    return std::unexpected("write " + path.string() + ": " + filled.error().text);
  }
  return {};
}

std::filesystem::path freeNameAside(const std::filesystem::path& path) {
  const std::time_t now = std::time(nullptr);
  std::tm utc{};
  ::gmtime_r(&now, &utc);
  std::array<char, 32> stamp{};
  std::strftime(stamp.data(), stamp.size(), "%Y%m%dT%H%M%S", &utc);
  for (int n = 1;; ++n) {
    auto aside = withSuffix(path, ".damaged-" + std::string(stamp.data()) + "-" + std::to_string(n));
    if (!isThere(aside)) return aside;
  }
}

// A journal that stayed behind would be played back into the file that takes this one's place.
std::expected<std::filesystem::path, std::string> setAside(const std::filesystem::path& path) {
  const bool existed = isThere(path);
  const auto aside = freeNameAside(path);
  if (existed && ::rename(path.c_str(), aside.c_str()) != 0) return std::unexpected(systemError("set aside", path));
  for (const auto* suffix : companions) {
    const auto companion = withSuffix(path, suffix);
    if (::rename(companion.c_str(), withSuffix(aside, suffix).c_str()) != 0 && errno != ENOENT) {
      auto error = systemError("set aside", companion);
      if (existed) ::rename(aside.c_str(), path.c_str());
      return std::unexpected(std::move(error));
    }
  }
  return existed ? aside : std::filesystem::path();
}

}  // namespace

SuiteFile::SuiteFile(std::filesystem::path path, SqliteDatabase database)
    : path_(std::move(path)), database_(std::move(database)) {}

std::expected<SuiteFile::Opened, SuiteFile::Failure> SuiteFile::open(const std::filesystem::path& path,
                                                                     Deadline deadline) {
  struct stat status{};
  if (::lstat(path.c_str(), &status) != 0) {
    return std::unexpected(Failure{errno == ENOENT ? Fault::missing : Fault::unavailable, systemError("open", path)});
  }
  if (!S_ISREG(status.st_mode)) return std::unexpected(Failure{Fault::unavailable, systemError("open", path, EINVAL)});
  if (!isTrustedOwner(status.st_uid)) {
    return std::unexpected(Failure{Fault::unavailable, "open " + path.string() + ": it belongs to another user"});
  }
  if (static_cast<std::uint64_t>(status.st_size) > maximumSuiteFileBytes) {
    return std::unexpected(Failure{Fault::damaged, "it is larger than a store can be"});
  }
  // Best effort, and never through an open descriptor: closing one would drop the locks that SQLite holds on this file.
  if ((status.st_mode & 077) != 0) (void)::fchmodat(AT_FDCWD, path.c_str(), 0600, AT_SYMLINK_NOFOLLOW);

  auto opened = retryWhileBusy(deadline, [&] { return tryOpen(path); });
  if (!opened) {
    const auto& error = opened.error();
    return std::unexpected(error.damage() ? Failure{Fault::damaged, error.text}
                                          : Failure{Fault::unavailable, "open " + path.string() + ": " + error.text});
  }
  return std::move(*opened);
}

SqliteResult<SuiteFile::Opened> SuiteFile::tryOpen(const std::filesystem::path& path) {
  auto database = SqliteDatabase::open(path);
  if (!database) return std::unexpected(database.error());
  if (auto done = database->run(settings); !done) return std::unexpected(done.error());

  const auto journal = database->ask("PRAGMA journal_mode=TRUNCATE");
  if (!journal) return std::unexpected(journal.error());
  if (*journal != "truncate") return damaged("its journal mode is " + *journal);
  const auto check = database->ask("PRAGMA quick_check(1)");
  if (!check) return std::unexpected(check.error());
  if (*check != "ok") {
    // A journal that is damaged costs no consent: the entries are read, and the next update begins a new file.
    const auto entriesCheck = database->ask("PRAGMA quick_check(entries)");
    if (!entriesCheck) return std::unexpected(entriesCheck.error());
    if (*entriesCheck != "ok") return damaged(*check);
  }
  const auto objects = database->ask("SELECT group_concat(sql, ';') FROM sqlite_schema");
  if (!objects) return std::unexpected(objects.error());
  // Also of an empty file: each takes its place complete, so that one has lost its content.
  // The first stores had no journal.
  if (*objects != entriesSchema && *objects != std::string(entriesSchema) + ";" + std::string(SuiteJournal::schema)) {
    return damaged("it is not laid out as a store");
  }
  // A changed format number in the header makes SQLite refuse writes, which is no want of permission.
  if (database->readOnly() && ::faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) == 0) {
    return damaged("its header allows no writing");
  }

  SuiteFile file(path, std::move(*database));
  if (auto done = file.prepareStatements(); !done) return std::unexpected(done.error());
  auto content = file.read();
  if (!content) return std::unexpected(content.error());
  if (*check != "ok") content->unreadable.push_back("the journal: " + *check);
  // SQLite reads zeros where the last page is cut, and its check is content with some of them.
  if (file.truncated()) content->lose("the end of the file");
  return Opened{std::move(file), std::move(*content)};
}

SqliteResult<> SuiteFile::prepareStatements() {
  struct Prepared {
    SqliteStatement& statement;
    std::string_view sql;
  };
  for (auto& [statement, sql] : {Prepared{version_, "PRAGMA data_version"},
                                 Prepared{select_, "SELECT key, type, value, checksum FROM entries ORDER BY key"},
                                 Prepared{put_, putStatement}, Prepared{remove_, "DELETE FROM entries WHERE key=?"}}) {
    auto prepared = database_.prepare(sql);
    if (!prepared) return std::unexpected(prepared.error());
    statement = std::move(*prepared);
  }
  return {};
}

std::expected<std::filesystem::path, std::string> SuiteFile::create(const std::filesystem::path& path,
                                                                    const SuiteEntries& entries,
                                                                    const std::vector<JournalRecord>& journal,
                                                                    const Folder& folder) {
  const auto fresh = withSuffix(path, ".new");
  if (auto made = makeFile(fresh, entries, journal); !made) {
    ::unlink(fresh.c_str());
    return std::unexpected(made.error());
  }
  auto aside = setAside(path);
  if (!aside) {
    ::unlink(fresh.c_str());
    return aside;
  }
  if (::rename(fresh.c_str(), path.c_str()) != 0) {
    auto error = systemError("create", path);
    if (!aside->empty()) ::rename(aside->c_str(), path.c_str());
    ::unlink(fresh.c_str());
    return std::unexpected(std::move(error));
  }
  if (auto durable = folder.sync(); !durable) return std::unexpected(durable.error());
  return aside;
}

SqliteResult<std::int64_t> SuiteFile::version() {
  const auto row = version_.step();
  if (!row) return std::unexpected(row.error());
  const auto version = version_.integer(0);
  version_.reset();
  return version.value_or(0);
}

SqliteResult<SuiteContent> SuiteFile::read() {
  SuiteContent content;
  // Before the rows: a commit in between is then read again, not missed.
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
      if (!verified || verified->key != markerKey || verified->type != markerType || verified->text != markerValue) {
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
      // One key twice: which of them is the newer cannot be told.
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
  const auto pages = database_.ask("PRAGMA page_count");
  struct stat status{};
  if (!pages || ::stat(path_.c_str(), &status) != 0) return false;
  return static_cast<std::uint64_t>(status.st_size) < std::strtoull(pages->c_str(), nullptr, 10) * pageBytes;
}

SqliteResult<> SuiteFile::put(std::string_view key, const StoredValue& value) {
  return putRow(put_, key, value.type, value.text);
}

SqliteResult<> SuiteFile::remove(std::string_view key) {
  remove_.bind(0, key);
  const auto done = remove_.step();
  if (!done) return std::unexpected(done.error());
  return {};
}

SqliteResult<JournalPage> SuiteFile::readJournal(std::int64_t before, std::size_t count, Deadline deadline) {
  return retryWhileBusy(deadline, [&] { return journal_.read(database_, before, count); });
}

SqliteResult<> SuiteFile::commit(Deadline deadline) {
  auto done = retryWhileBusy(deadline, [this] { return database_.run("COMMIT"); });
  if (done) journal_.transactionEnded(true);
  return done;
}

bool SuiteFile::rollback() {
  journal_.transactionEnded(false);
  // SQLite has ended the transaction by itself after some errors.
  if (database_.inTransaction()) {
    if (const auto done = database_.run("ROLLBACK"); !done) return false;
  }
  return !database_.inTransaction();
}

}  // namespace quillon
