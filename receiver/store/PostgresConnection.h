#pragma once

#include <chrono>
#include <cstdint>
#include <expected>
#include <memory>
#include <span>
#include <string>

#include "receiver/store/DecisionStore.h"

struct pg_conn;
struct pg_result;

namespace quillon::receiver {

// A connection to a PostgreSQL server with time limits on every wait.
class PostgresConnection {
 public:
  using Rows = std::unique_ptr<pg_result, void (*)(pg_result*)>;

  [[nodiscard]] static std::expected<std::unique_ptr<PostgresConnection>, StoreError> open(const std::string& address);

  // Runs one statement with text parameters. A limit of zero waits indefinitely.
  [[nodiscard]] std::expected<Rows, StoreError> execute(const std::string& sql, std::span<const std::string> parameters,
                                                        std::chrono::milliseconds limit);
  [[nodiscard]] std::expected<void, StoreError> prepare(const char* name, const std::string& sql);
  [[nodiscard]] std::expected<Rows, StoreError> executePrepared(const char* name,
                                                                std::span<const std::string> parameters,
                                                                std::chrono::milliseconds limit);

 private:
  struct Close {
    void operator()(pg_conn* connection) const;
  };
  explicit PostgresConnection(pg_conn* connection) : connection_(connection) {}

  std::expected<Rows, StoreError> finish(bool sent, std::chrono::milliseconds limit);
  // Waits for a complete result; false on timeout or a broken connection.
  bool waitForAnswer(std::chrono::milliseconds limit);
  StoreError away(const std::string& text) const;

  std::unique_ptr<pg_conn, Close> connection_;
};

}  // namespace quillon::receiver
