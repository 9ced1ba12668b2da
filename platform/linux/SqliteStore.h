// The durable store on a local file system.
#pragma once

#include <filesystem>
#include <map>
#include <mutex>

#include "platform/KeyValueSuite.h"

namespace quillon {

// One SQLite file a suite, "<folder>/<name>.sqlite" (0600), readable with the sqlite3 shell. The folder is made when it
// is missing (0700). Several processes may use it at once; a child must open its own after a fork. A damaged file is
// kept beside the new one as "<name>.sqlite.damaged-<UTC>-<n>". A name that is not the plain name of a visible file is
// refused. The standard defaults are empty at first and live as long as this object.
class SqliteStore final : public KeyValueStore {
 public:
  explicit SqliteStore(std::filesystem::path folder);

  std::shared_ptr<KeyValueSuite> open(std::string_view name, Report report) override;
  std::shared_ptr<KeyValueSuite> standardDefaults() override;

 private:
  const std::filesystem::path folder_;
  const std::shared_ptr<KeyValueSuite> standardDefaults_;
  std::mutex mutex_;
  std::map<std::string, std::shared_ptr<KeyValueSuite>, std::less<>> suites_;
};

}  // namespace quillon
