#include "tests/support/PostgresServer.h"

#include <libpq-fe.h>
#include <pwd.h>
#include <signal.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

namespace quillon::test {
namespace {

void require(bool holds, const std::string& said) {
  if (holds) return;
  std::fprintf(stderr, "PostgreSQL does not do what it should: %s\n", said.c_str());
  std::abort();
}

}  // namespace

const std::string& postgresPrograms() {
  static const std::string programs = [] {
    std::error_code error;
    for (const auto& version : std::filesystem::directory_iterator("/usr/lib/postgresql", error)) {
      if (exists(version.path() / "bin/postgres")) return version.path().string() + "/bin/";
    }
    return std::string();
  }();
  return programs;
}

bool PostgresServer::isInstalled() {
  return !postgresPrograms().empty() && (geteuid() != 0 || getpwnam("postgres") != nullptr);
}

PostgresServer::PostgresServer(const std::filesystem::path& parent) : folder_(parent) {
  if (const passwd* const user = getpwnam("postgres"); user != nullptr && geteuid() == 0) {
    if (chown(folder_.path().c_str(), user->pw_uid, user->pw_gid) != 0) std::abort();
  }
  ServerProcess initialize({postgresPrograms() + "initdb", "-D", folder_.path() / "data", "-A", "trust", "-U",
                            "postgres", "--locale=C.UTF-8", "--no-sync"},
                           "postgres");
  const auto status = initialize.wait(std::chrono::minutes(3));
  require(status == 0, "initdb ended with " + std::to_string(status.value_or(-1000)) + ": " + initialize.output());
  start();
}

PostgresServer::~PostgresServer() {
  if (!process_) return;
  process_->sendSignal(SIGQUIT);
  (void)process_->wait();
}

void PostgresServer::start() {
  process_.reset();
  process_.emplace(
      std::vector<std::string>{postgresPrograms() + "postgres", "-D", folder_.path() / "data", "-c",
                               "listen_addresses=", "-c", "unix_socket_directories=" + folder_.path().string()},
      "postgres");
  require(!process_->waitForLine("ready to accept connections", std::chrono::minutes(1)).empty(),
          "it is not ready: " + process_->output());
}

std::string PostgresServer::address(const std::string& database) const {
  return "postgresql:///" + database + "?user=postgres&host=" + folder_.path().string();
}

void PostgresServer::execute(const std::string& sql) const {
  PGconn* const connection = PQconnectdb(address().c_str());
  PGresult* const result = PQexec(connection, sql.c_str());
  require(PQresultStatus(result) == PGRES_COMMAND_OK || PQresultStatus(result) == PGRES_TUPLES_OK,
          PQerrorMessage(connection));
  PQclear(result);
  PQfinish(connection);
}

std::string PostgresServer::newDatabase(const std::string& name) const {
  execute("CREATE DATABASE " + name);
  return address(name);
}

}  // namespace quillon::test
