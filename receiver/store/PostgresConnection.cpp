#include "receiver/store/PostgresConnection.h"

#include <libpq-fe.h>
#include <poll.h>

#include <string_view>
#include <vector>

namespace quillon::receiver {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

std::vector<const char*> pointersTo(std::span<const std::string> parameters) {
  std::vector<const char*> pointers;
  for (const auto& parameter : parameters) pointers.push_back(parameter.c_str());
  return pointers;
}

// Maps the SQLSTATE of a failed statement.
StoreError::Kind kindOf(std::string_view state) {
  using Kind = StoreError::Kind;
  if (state == "40001" || state == "40P01") return Kind::conflict;  // serialization failure, deadlock
  // Data exceptions and constraint violations are the statement's fault; all others the server's.
  return state.starts_with("22") || state.starts_with("23") ? Kind::refused : Kind::away;
}

// The error text without details, which may quote rows.
std::string primaryText(const PGresult* result) {
  const char* text = PQresultErrorField(result, PG_DIAG_MESSAGE_PRIMARY);
  const char* state = PQresultErrorField(result, PG_DIAG_SQLSTATE);
  return std::string("PostgreSQL: ") + (state ? state : "") + " " + (text ? text : "no answer");
}

}  // namespace

void PostgresConnection::Close::operator()(pg_conn* connection) const {
  PQfinish(connection);
}

std::expected<std::unique_ptr<PostgresConnection>, StoreError> PostgresConnection::open(const std::string& address) {
  // Settings in the address take precedence. A lost server is detected within ten seconds.
  const char* names[] = {"connect_timeout", "tcp_user_timeout",          "keepalives_idle", "keepalives_interval",
                         "dbname",          "fallback_application_name", "client_encoding", nullptr};
  const char* values[] = {"5", "10000", "5", "5", address.c_str(), "quillon-receiver", "UTF8", nullptr};
  std::unique_ptr<PostgresConnection> made(new PostgresConnection(PQconnectdbParams(names, values, 1)));
  PGconn* connection = made->connection_.get();
  if (PQstatus(connection) != CONNECTION_OK) return std::unexpected(made->away(PQerrorMessage(connection)));
  PQsetnonblocking(connection, 1);
  PQsetNoticeProcessor(connection, [](void*, const char*) {}, nullptr);
  return made;
}

std::expected<PostgresConnection::Rows, StoreError> PostgresConnection::execute(const std::string& sql,
                                                                                std::span<const std::string> parameters,
                                                                                milliseconds limit) {
  const auto pointers = pointersTo(parameters);
  return finish(PQsendQueryParams(connection_.get(), sql.c_str(), static_cast<int>(pointers.size()), nullptr,
                                  pointers.data(), nullptr, nullptr, 0) == 1,
                limit);
}

std::expected<void, StoreError> PostgresConnection::prepare(const char* name, const std::string& sql) {
  const auto result =
      finish(PQsendPrepare(connection_.get(), name, sql.c_str(), 0, nullptr) == 1, std::chrono::seconds(10));
  if (!result) return std::unexpected(result.error());
  return {};
}

std::expected<PostgresConnection::Rows, StoreError> PostgresConnection::executePrepared(
    const char* name, std::span<const std::string> parameters, milliseconds limit) {
  const auto pointers = pointersTo(parameters);
  return finish(PQsendQueryPrepared(connection_.get(), name, static_cast<int>(pointers.size()), pointers.data(),
                                    nullptr, nullptr, 0) == 1,
                limit);
}

std::expected<PostgresConnection::Rows, StoreError> PostgresConnection::finish(bool sent, milliseconds limit) {
  PGconn* connection = connection_.get();
  if (!sent || !waitForAnswer(limit)) return std::unexpected(away(PQerrorMessage(connection)));
  Rows result(PQgetResult(connection), &PQclear);
  // The end of the result; a statement has only one.
  while (waitForAnswer(limit)) {
    const Rows more(PQgetResult(connection), &PQclear);
    if (!more) break;
  }
  const auto status = PQresultStatus(result.get());
  if (status == PGRES_COMMAND_OK || status == PGRES_TUPLES_OK) return result;
  if (PQstatus(connection) != CONNECTION_OK) return std::unexpected(away(PQerrorMessage(connection)));
  const char* state = PQresultErrorField(result.get(), PG_DIAG_SQLSTATE);
  return std::unexpected(StoreError{.kind = kindOf(state ? state : ""), .text = primaryText(result.get())});
}

bool PostgresConnection::waitForAnswer(milliseconds limit) {
  PGconn* connection = connection_.get();
  const auto deadline = steady_clock::now() + limit;
  while (true) {
    const int unsent = PQflush(connection);
    if (unsent < 0) return false;
    if (unsent == 0 && PQisBusy(connection) == 0) return true;
    int wait = -1;
    if (limit.count() > 0) {
      const auto left = std::chrono::ceil<milliseconds>(deadline - steady_clock::now());
      if (left.count() <= 0) return false;
      wait = static_cast<int>(left.count());
    }
    pollfd socket{.fd = PQsocket(connection),
                  .events = static_cast<short>(unsent == 1 ? POLLIN | POLLOUT : POLLIN),
                  .revents = 0};
    poll(&socket, 1, wait);
    if (socket.revents != 0 && PQconsumeInput(connection) != 1) return false;
  }
}

// libpq's message may name host and user, as the address does, but no rows.
StoreError PostgresConnection::away(const std::string& text) const {
  const std::string line = text.substr(0, text.find('\n'));
  return {.kind = StoreError::Kind::away, .text = "PostgreSQL: " + (line.empty() ? "did not answer in time" : line)};
}

}  // namespace quillon::receiver
