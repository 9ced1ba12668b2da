// The real servers of a test: PostgreSQL, receivers, and nginx as it is deployed.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "receiver/store/DecisionStore.h"
#include "tests/support/PostgresServer.h"
#include "tests/support/ServerProcess.h"
#include "tests/support/TemporaryFolder.h"

namespace quillon::test {

// A port that was free a moment ago.
int freePort();

// One for all tests of the process that do it no harm.
PostgresServer& sharedPostgres();

class ReceiverProcess {
 public:
  // With --any-token unless options name a file of tokens.
  explicit ReceiverProcess(const std::string& store, const std::vector<std::string>& options = {}, int port = 0);

  int port() const { return port_; }
  std::string url() const { return "http://127.0.0.1:" + std::to_string(port_) + "/"; }
  ServerProcess& process() { return *process_; }
  // Until it takes uploads.
  bool waitUntilReady();

 private:
  std::unique_ptr<ServerProcess> process_;
  int port_ = 0;
};

// receiver/deploy/nginx.conf with the folders, ports and certificates of this test, before receivers on these two
// ports.
class NginxServer {
 public:
  static bool isInstalled();

  enum class Tls { on, off };
  NginxServer(const std::string& site, int firstReceiver, int secondReceiver, Tls tls);

  std::string appUrl() const { return scheme_ + "://localhost:" + std::to_string(appPort_) + "/"; }
  std::string cdnUrl() const { return scheme_ + "://localhost:" + std::to_string(cdnPort_) + "/"; }
  int appPort() const { return appPort_; }
  std::string certificate() const { return folder_.path() / "certificate.pem"; }
  std::string accessLog();

 private:
  const TemporaryFolder folder_{TemporaryFolder::fastParent()};
  const int appPort_;
  const int cdnPort_;
  const std::string scheme_;
  std::optional<ServerProcess> process_;
};

// Of an entry of a history: "1 granted 100".
std::string decisionOf(const receiver::Upload& entry);

// What a command says on both outputs, and its status in the last line.
std::string outputOf(const std::string& command);

}  // namespace quillon::test
