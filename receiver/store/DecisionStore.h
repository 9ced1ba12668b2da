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
    away,      // the store does not answer, or can take nothing; the connection is of no use any more
    conflict,  // another writer was in the way: the same call may succeed at once
    refused,   // the store takes others, but not this
  };
  Kind kind = Kind::away;
  std::string text;  // for the log: names no person
};

// Whose decisions are meant. An empty tenant or application stands for all of them.
struct Subject {
  std::string id;
  std::string tenant = {};
  std::string application = {};
};

// How many decisions are kept of one kind. Those of applications in test mode do not count.
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

// Every decision, once: it is known by its subject, purpose or permission, time and status. A set of them has one order
// and one newest member for each purpose, in whatever order they came, so no instance needs to ask another. Blocking;
// for one thread at a time.
class DecisionStore {
 public:
  virtual ~DecisionStore() = default;

  // All of them or none, on disk when it returns without an error. The number of those that were not there before.
  [[nodiscard]] virtual std::expected<std::int64_t, StoreError> add(std::span<const Upload> uploads) = 0;

  // Whether it could take something now.
  [[nodiscard]] virtual std::expected<void, StoreError> check() = 0;

  // In the device's order, one decision an entry. Within a second the device's order is unknown: there, what grants
  // comes first, so that the last entry of a purpose never grants what was taken back.
  [[nodiscard]] virtual std::expected<std::vector<Upload>, StoreError> history(const Subject& subject) = 0;
  [[nodiscard]] virtual std::expected<std::int64_t, StoreError> erase(const Subject& subject) = 0;

  [[nodiscard]] virtual std::expected<std::vector<Answers>, StoreError> answers() = 0;
  // Removes what was received before that second, a part at a time, so that uploads pass between. The number removed.
  [[nodiscard]] virtual std::expected<std::int64_t, StoreError> expire(std::int64_t receivedBefore) = 0;
};

// A folder holds a SQLite database; postgresql://… is a server.
[[nodiscard]] bool isPostgres(const std::string& address);
[[nodiscard]] std::expected<std::unique_ptr<DecisionStore>, StoreError> openStore(const std::string& address);

}  // namespace quillon::receiver
