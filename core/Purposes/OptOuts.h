// Opt-outs by privacy signals.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "core/Persistance/UserDefaults/StoredValues.h"
#include "quillon/ConsentSDKOptions.h"
#include "quillon/MainConfiguration.h"

namespace quillon {

// The purposes that a signal opts out of. Immutable.
class SignalMapping {
 public:
  // As named by the application, else by the configuration. Excludes essential purposes, and those governed by app
  // tracking: the user's setting for this application is more specific than a signal to all. Without a configuration
  // (null) and a list of the application, any purpose may be covered.
  SignalMapping(const PrivacySignal& options, const MainConfiguration* configuration);

  [[nodiscard]] bool covers(std::int64_t purposeId) const;
  // nullopt: any purpose.
  [[nodiscard]] std::optional<std::vector<std::int64_t>> purposes() const {
    return isKnown_ ? std::optional(purposes_) : std::nullopt;
  }

 private:
  bool isKnown_ = true;
  std::vector<std::int64_t> purposes_;  // sorted
};

// The opt-outs at one moment: none unless a signal is honoured and on. Thread-safe, immutable.
class OptOuts {
 public:
  OptOuts() = default;
  explicit OptOuts(std::shared_ptr<const SignalMapping> mapping) : mapping_(std::move(mapping)) {}

  [[nodiscard]] bool isSignalOn() const noexcept { return mapping_ != nullptr; }
  // Whether a signal opts out of the purpose. Never overrides the user's own answer. Allocates nothing.
  [[nodiscard]] bool include(std::int64_t purposeId, const StoredValues& stored) const {
    return mapping_ && mapping_->covers(purposeId) && !stored.isAnswered(purposeId);
  }

 private:
  std::shared_ptr<const SignalMapping> mapping_;
};

}  // namespace quillon
