// A real PostgreSQL server.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "tests/support/ServerProcess.h"
#include "tests/support/TemporaryFolder.h"

namespace quillon::test {

// The folder of the installed server's programs, with a slash behind it; empty without a server.
const std::string& postgresPrograms();

// A private server in a temporary folder, listening only on a socket there.
class PostgresServer {
 public:
  static bool isInstalled();

  // In memory if possible, or below the given folder. Terminates the process when the server cannot be started.
  explicit PostgresServer(const std::filesystem::path& parent = TemporaryFolder::fastParent());
  // Lets the server remove its shared memory, which would outlive it.
  ~PostgresServer();

  void start();
  void kill() { process_.reset(); }
  std::string address(const std::string& database = "postgres") const;
  void execute(const std::string& sql) const;
  // Creates an empty database; returns its address.
  std::string newDatabase(const std::string& name) const;

 private:
  const TemporaryFolder folder_;
  std::optional<ServerProcess> process_;
};

}  // namespace quillon::test
