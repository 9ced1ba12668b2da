// The durable store on a local file system.
#pragma once

#include <chrono>
#include <filesystem>
#include <map>
#include <mutex>

#include "platform/KeyValueSuite.h"

namespace quillon {

class WorkPool;

// One SQLite file a suite, "<folder>/<name>.sqlite" (0600), readable with the sqlite3 shell. The folder is made when it
// is missing (0700). Several processes may use it at once; a child must open its own after a fork. A damaged file is
// kept beside the new one as "<name>.sqlite.damaged-<UTC>-<n>". A turn is the lock on a file "<name>.turn" (0600). A
// name that is not the plain name of a visible file is refused. The standard defaults are empty at first and live as
// long as this object.
class SqliteStore final : public KeyValueStore {
 public:
  // Changes by other processes are noticed on the pool's threads; without a pool nobody who observes hears of them. A
  // start waits so long for a process that holds the suite.
  explicit SqliteStore(std::filesystem::path folder, std::shared_ptr<WorkPool> pool = nullptr,
                       std::chrono::milliseconds openWait = std::chrono::seconds(10));

  std::expected<std::shared_ptr<KeyValueSuite>, std::string> open(std::string_view name, Report report) override;
  std::unique_ptr<StoreTurn> tryTurn(std::string_view name) override;
  std::shared_ptr<KeyValueSuite> standardDefaults() override;

 private:
  void reportTurnFault(const std::string& fault);

  const std::filesystem::path folder_;
  const std::shared_ptr<KeyValueSuite> standardDefaults_;
  const std::shared_ptr<WorkPool> pool_;
  const std::chrono::milliseconds openWait_;
  std::mutex mutex_;  // guards the members below
  Report report_;     // of the first suite
  bool isTurnFaultReported_ = false;
  std::map<std::string, std::shared_ptr<KeyValueSuite>, std::less<>> suites_;
};

}  // namespace quillon
