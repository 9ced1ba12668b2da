// The store's content, read by its documented key names, bypassing the SDK.
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
  std::map<int, std::string> decisions;  // by purpose, as text
  std::set<int> answered;                // purposes answered by the user
  std::set<int> signalled;               // purposes decided by a privacy signal
  std::string given = "CONSENT_NO_ACTION";
  std::string law;  // compliance type; empty while unknown
  std::string interval = "12 month";
  std::int64_t version = 0;
  bool isBannerPresent = false;
  std::optional<std::int64_t> shown;  // seconds since 1970
  std::vector<std::int64_t> pending;
  bool isAnyPermissionPending = false;
  bool hasUploadFailed = false;
  bool isRefused = false;  // the server has finally rejected the pending decisions
  std::string subject;

  [[nodiscard]] std::optional<std::string> decision(int purpose) const {
    const auto found = decisions.find(purpose);
    return found == decisions.end() ? std::nullopt : std::optional(found->second);
  }
  bool operator==(const StoreView&) const = default;
};

// Decisions, consent type and compliance type as text.
[[nodiscard]] std::string described(const StoreView& store);
[[nodiscard]] StoreView viewOf(const SuiteEntries& entries);

}  // namespace quillon::sim
