// What lies in the store, read by the names that it is specified with and not through the SDK.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "platform/KeyValueSuite.h"

namespace quillon::sim {

struct StoreView {
  std::map<int, std::string> decisions;  // by purpose, in words
  std::set<int> answered;                // that the user has answered
  std::set<int> signalled;               // that a privacy signal decided
  std::string given = "CONSENT_NO_ACTION";
  std::string law;  // empty while none is known
  std::string interval = "12 month";
  std::int64_t version = 0;
  bool isBannerPresent = false;
  std::optional<std::int64_t> shown;  // seconds since 1970
  std::vector<std::int64_t> pending;
  bool isAnyPermissionPending = false;
  bool hasUploadFailed = false;
  bool isRefused = false;  // the server does not want what is pending
  std::string subject;

  [[nodiscard]] std::optional<std::string> decision(int purpose) const {
    const auto found = decisions.find(purpose);
    return found == decisions.end() ? std::nullopt : std::optional(found->second);
  }
  bool operator==(const StoreView&) const = default;
};

// Decisions, how they were given, and the law.
[[nodiscard]] std::string described(const StoreView& store);
[[nodiscard]] StoreView viewOf(const SuiteEntries& entries);

}  // namespace quillon::sim
