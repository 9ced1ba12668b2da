// The durable store, on a local file system.
#pragma once

#include <chrono>
#include <filesystem>
#include <map>
#include <mutex>

#include "platform/KeyValueSuite.h"

namespace quillon {

class WorkPool;

// One SQLite file per suite, "<folder>/<name>.sqlite" (0600), readable with the sqlite3 shell. The folder (0700) is
// created if missing. Several processes may use it at once; a forked child must open its own. A damaged file is kept as
// "<name>.sqlite.damaged-<UTC>-<n>". A turn is a lock on the file "<name>.turn" (0600). Names must be plain names of
// visible files. The standard defaults start empty and live as long as this object.
class SqliteStore final : public KeyValueStore {
 public:
  // Changes by other processes are detected on pool threads; without a pool, observers are not called. `openWait`
  // limits the wait for a process that holds the suite when it is opened.
  explicit SqliteStore(std::filesystem::path folder, std::shared_ptr<WorkPool> pool = nullptr,
                       std::chrono::milliseconds openWait = std::chrono::seconds(10));

  std::expected<std::shared_ptr<KeyValueSuite>, std::string> open(std::string_view name, Report report) override;
  std::unique_ptr<StoreLock> tryLock(std::string_view name) override;
  std::shared_ptr<KeyValueSuite> standardDefaults() override;

 private:
  void reportTurnFault(const std::string& fault);

  const std::filesystem::path folder_;
  const std::shared_ptr<KeyValueSuite> standardDefaults_;
  const std::shared_ptr<WorkPool> pool_;
  const std::chrono::milliseconds openWait_;
  std::mutex mutex_;  // guards the members below
  Report report_;     // of the first suite opened
  bool isTurnFaultReported_ = false;
  std::map<std::string, std::shared_ptr<KeyValueSuite>, std::less<>> suites_;
};

}  // namespace quillon
