#pragma once

#include <cstdint>
#include <expected>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "receiver/uploads/Upload.h"

namespace quillon::receiver {

struct StoreError {
  enum class Kind {
    away,      // the store does not respond or accepts nothing; the connection is unusable
    conflict,  // conflict with another writer; retry at once
    refused,   // the store rejects this call only
  };
  Kind kind = Kind::away;
  std::string text;  // for the log; identifies no person
};

// A subject. An empty tenant or application matches all.
struct Subject {
  std::string id;
  std::string tenant = {};
  std::string application = {};
};

// The number of stored decisions of one kind, without those in test mode.
struct Answers {
  std::string tenant;
  std::string application;
  std::string kind;
  std::string item;
  std::string place;
  std::int64_t version = 0;
  std::int64_t day = 0;  // since 1970-01-01, of the decision
  std::string status;
  bool isImplicit = false;
  std::int64_t count = 0;
};

// Stores every decision once, identified by subject, purpose or permission, time and status. Order and newest decision
// are independent of arrival order, so instances need no coordination. Blocking; one thread at a time.
class DecisionStore {
 public:
  virtual ~DecisionStore() = default;

  // Adds all or none, durable on success. Returns the number of new decisions.
  [[nodiscard]] virtual std::expected<std::int64_t, StoreError> add(std::span<const Upload> uploads) = 0;

  // Whether the store accepts writes now.
  [[nodiscard]] virtual std::expected<void, StoreError> check() = 0;

  // The decisions in the device's order, one per entry. Within a second the order is unknown: grants come first, so
  // that the last entry of a purpose never grants what was withdrawn.
  [[nodiscard]] virtual std::expected<std::vector<Upload>, StoreError> history(const Subject& subject) = 0;
  [[nodiscard]] virtual std::expected<std::int64_t, StoreError> erase(const Subject& subject) = 0;

  [[nodiscard]] virtual std::expected<std::vector<Answers>, StoreError> answers() = 0;
  // Removes decisions received before that time, in parts, so that uploads proceed in between. Returns the number
  // removed.
  [[nodiscard]] virtual std::expected<std::int64_t, StoreError> expire(std::int64_t receivedBefore) = 0;
};

// postgresql://… is a server; anything else is a folder with an SQLite database.
[[nodiscard]] bool isPostgres(const std::string& address);
[[nodiscard]] std::expected<std::unique_ptr<DecisionStore>, StoreError> openStore(const std::string& address);

}  // namespace quillon::receiver
