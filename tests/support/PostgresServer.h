// A real PostgreSQL.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "tests/support/ServerProcess.h"
#include "tests/support/TemporaryFolder.h"

namespace quillon::test {

// A server of its own in a temporary folder, which listens on a socket there alone.
class PostgresServer {
 public:
  static bool isInstalled();

  // In memory, where that is, or below the folder given. A server that does not do what it should ends the process:
  // without it nothing can be shown.
  explicit PostgresServer(const std::filesystem::path& parent = TemporaryFolder::fastParent());

  void start();
  void kill() { process_.reset(); }
  std::string address(const std::string& database = "postgres") const;
  void execute(const std::string& sql) const;
  // An empty database of that name; its address.
  std::string newDatabase(const std::string& name) const;

 private:
  const TemporaryFolder folder_;
  std::optional<ServerProcess> process_;
};

}  // namespace quillon::test
