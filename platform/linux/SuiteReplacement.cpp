#include "platform/linux/SuiteReplacement.h"

#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <ctime>
#include <system_error>
#include <utility>

#include "platform/linux/FileCalls.h"
#include "platform/linux/StoredValue.h"
#include "platform/linux/SuiteJournal.h"
#include "platform/linux/SuiteLayout.h"

namespace quillon {

namespace {

constexpr std::string_view asideSuffix = ".damaged-";

std::filesystem::path withSuffix(std::filesystem::path path, std::string_view suffix) {
  path += suffix;
  return path;
}

bool isThere(const std::filesystem::path& path) {
  struct stat status{};
  return ::lstat(path.c_str(), &status) == 0;
}

SqliteResult<> fill(SqliteDatabase& database, const SuiteEntries& entries, const std::vector<JournalRecord>& records) {
  if (auto done = SuiteLayout::prepare(database); !done) return done;
  // No rollback journal file: no other process knows the file, and it is deleted on failure.
  if (auto done = database.run("PRAGMA page_size=4096; PRAGMA journal_mode=MEMORY; BEGIN IMMEDIATE"); !done)
    return done;
  if (auto done = database.run(std::string(SuiteLayout::entries).c_str()); !done) return done;
  {
    auto put = database.prepare(SuiteLayout::put);
    if (!put) return std::unexpected(put.error());
    if (auto done = SuiteLayout::write(*put, SuiteLayout::markerKey, SuiteLayout::markerType, SuiteLayout::markerValue);
        !done)
      return done;
    for (const auto& [key, value] : entries) {
      const auto [type, text] = toStored(value);
      if (auto done = SuiteLayout::write(*put, key, type, text); !done) return done;
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
  // Created without opening, so that the mode is independent of SQLite and the umask.
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
    auto aside = withSuffix(path, std::string(asideSuffix) + stamp.data() + "-" + std::to_string(n));
    if (!isThere(aside)) return aside;
  }
}

// Hard-links the file; copies it where the file system has no hard links.
std::expected<void, std::string> keep(const std::filesystem::path& file, const std::filesystem::path& aside) {
  if (::link(file.c_str(), aside.c_str()) == 0) return {};
  auto error = systemError("set aside", file);
  std::error_code failed;
  if (std::filesystem::copy_file(file, aside, failed)) return {};
  return std::unexpected(std::move(error));
}

// Keeps the old file and its companions under new names, and durably removes companions that would be replayed into its
// replacement.
std::expected<std::filesystem::path, std::string> keepAside(const std::filesystem::path& path, const Folder& folder) {
  std::filesystem::path aside;
  if (isThere(path)) {
    aside = freeNameAside(path);
    if (auto kept = keep(path, aside); !kept) return std::unexpected(std::move(kept.error()));
  }
  bool areCompanionsThere = false;
  for (const auto* suffix : SuiteLayout::companions) {
    const auto companion = withSuffix(path, suffix);
    if (!isThere(companion)) continue;
    areCompanionsThere = true;
    if (aside.empty()) continue;
    if (auto kept = keep(companion, withSuffix(aside, suffix)); !kept) return std::unexpected(std::move(kept.error()));
  }
  if (auto durable = folder.sync(); !durable) return std::unexpected(std::move(durable.error()));
  if (!areCompanionsThere) return aside;
  for (const auto* suffix : SuiteLayout::companions) {
    const auto companion = withSuffix(path, suffix);
    if (::unlink(companion.c_str()) != 0 && errno != ENOENT) return std::unexpected(systemError("remove", companion));
  }
  if (auto durable = folder.sync(); !durable) return std::unexpected(std::move(durable.error()));
  return aside;
}

}  // namespace

std::expected<std::filesystem::path, std::string> replaceSuiteFile(const std::filesystem::path& path,
                                                                   const SuiteEntries& entries,
                                                                   const std::vector<JournalRecord>& journal,
                                                                   const Folder& folder) {
  const auto fresh = withSuffix(path, ".new");
  const auto made = makeFile(fresh, entries, journal);
  auto aside = made ? keepAside(path, folder) : std::unexpected(made.error());
  if (aside && ::rename(fresh.c_str(), path.c_str()) != 0) aside = std::unexpected(systemError("create", path));
  if (!aside) {
    ::unlink(fresh.c_str());
    return aside;
  }
  if (auto durable = folder.sync(); !durable) return std::unexpected(std::move(durable.error()));
  return aside;
}

bool isSuiteFileKeptAside(const std::filesystem::path& path) {
  const auto start = path.filename().string() + std::string(asideSuffix);
  std::error_code error;
  for (std::filesystem::directory_iterator entry(path.parent_path(), error), end; !error && entry != end;
       entry.increment(error)) {
    if (entry->path().filename().string().starts_with(start)) return true;
  }
  return static_cast<bool>(error);  // an unreadable folder may contain one
}

}  // namespace quillon
