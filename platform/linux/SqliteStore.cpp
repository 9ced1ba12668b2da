#include "platform/linux/SqliteStore.h"

#include <sys/stat.h>

#include <system_error>
#include <utility>

#include "platform/linux/FileCalls.h"
#include "platform/linux/FileLock.h"
#include "platform/linux/Ownership.h"
#include "platform/linux/PosixFileSystem.h"
#include "platform/linux/SqliteSuite.h"
#include "platform/linux/WorkPool.h"
#include "platform/parts/Contained.h"
#include "platform/parts/MemorySuite.h"

namespace quillon {

namespace {

// Leaves room for suffixes within the 255 bytes of a file name.
constexpr std::size_t maximumNameBytes = 180;

bool isFileName(std::string_view name) {
  return !name.empty() && name.size() <= maximumNameBytes && name.front() != '.' &&
         name.find_first_of(std::string_view("/\0", 2)) == std::string_view::npos;
}

// Resolves links in the folder's path, which the user may arrange; SQLite follows none.
std::expected<std::filesystem::path, std::string> readyFolder(const std::filesystem::path& folder,
                                                              const KeyValueStore::Report& report) {
  std::error_code error;
  if (!std::filesystem::is_directory(folder, error)) {
    PosixFileSystem files{{}};
    if (auto made = files.createDirectories(folder); !made) return std::unexpected(made.error());
  }
  auto canonical = std::filesystem::canonical(folder, error);
  if (error) return std::unexpected("open folder " + folder.string() + ": " + error.message());
  struct stat status{};
  if (::stat(canonical.c_str(), &status) != 0) return std::unexpected(systemError("open folder", canonical));
  if (!isTrustedOwner(status.st_uid)) {
    return std::unexpected("open folder " + canonical.string() + ": it belongs to another user");
  }
  // Reported but accepted: some file systems have no modes and show everything as world-writable.
  if ((status.st_mode & S_IWOTH) != 0 && report) {
    report(KeyValueStore::ReportLevel::error,
           "Every user may write to " + canonical.string() + " and so remove the consents in it");
  }
  return canonical;
}

}  // namespace

SqliteStore::SqliteStore(std::filesystem::path folder, std::shared_ptr<WorkPool> pool,
                         std::chrono::milliseconds openWait)
    : folder_(std::move(folder)),
      standardDefaults_(std::make_shared<MemorySuite>()),
      pool_(std::move(pool)),
      openWait_(openWait) {}

std::expected<std::shared_ptr<KeyValueSuite>, std::string> SqliteStore::open(std::string_view name, Report report) try {
  if (!isFileName(name)) return std::unexpected("open store: a name like this is no file's");
  {
    std::lock_guard lock(mutex_);
    if (const auto known = suites_.find(name); known != suites_.end()) return known->second;
    if (!report_) report_ = report;
  }
  // Without the lock: the report may log, and the logger use the store. Of two concurrent threads, both use the suite
  // of the one that finishes first.
  const auto folder = readyFolder(folder_, report);
  if (!folder) return std::unexpected(folder.error());
  auto suite = SqliteSuite::open(*folder / (std::string(name) + ".sqlite"), std::move(report),
                                 pool_ ? pool_->loop() : nullptr, openWait_);
  if (!suite) return std::unexpected(std::move(suite.error()));
  std::lock_guard lock(mutex_);
  return suites_.try_emplace(std::string(name), std::move(*suite)).first->second;
} catch (const std::exception& error) {  // out of memory, or thrown by the report
  return std::unexpected(error.what());
} catch (...) {
  return std::unexpected("unknown exception");
}

std::unique_ptr<StoreLock> SqliteStore::tryLock(std::string_view name) try {
  auto turn = [&]() -> std::expected<std::unique_ptr<StoreLock>, std::string> {
    if (!isFileName(name)) return std::unexpected("a name like this is no file's");
    const auto folder = readyFolder(folder_, {});
    if (!folder) return std::unexpected(folder.error());
    return tryFileLock(*folder / (std::string(name) + ".turn"));
  }();
  if (turn) return std::move(*turn);
  reportTurnFault(turn.error());
  return std::make_unique<StoreLock>();
} catch (...) {
  return nullptr;  // out of memory: a later call may succeed
}

void SqliteStore::reportTurnFault(const std::string& fault) {
  Report report;
  {
    std::lock_guard lock(mutex_);
    if (!report_ || std::exchange(isTurnFaultReported_, true)) return;
    report = report_;
  }
  contained([&] { report(ReportLevel::error, "Turns among processes cannot be kept: " + fault); });
}

std::shared_ptr<KeyValueSuite> SqliteStore::standardDefaults() {
  return standardDefaults_;
}

}  // namespace quillon
