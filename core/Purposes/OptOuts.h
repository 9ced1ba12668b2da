// What privacy signals opt users out of.
#pragma once

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "core/Persistance/UserDefaults/StoredValues.h"
#include "quillon/ConsentSDKOptions.h"
#include "quillon/MainConfiguration.h"

namespace quillon {

// The purposes that a signal stands for. Immutable.
class SignalMapping {
 public:
  // As the application names them, else the configuration. Not essential purposes, which nobody can opt out of, nor
  // those that app tracking governs: what a user has told the device of this application says more than a signal to all
  // of them. Without a configuration (null) and a list of the application's it may be any purpose.
  SignalMapping(const PrivacySignal& options, const MainConfiguration* configuration);

  [[nodiscard]] bool covers(std::int64_t purposeId) const;

 private:
  bool isKnown_ = true;
  std::vector<std::int64_t> purposes_;  // sorted
};

// What holds at one moment: nothing, unless a signal is honoured and on. Thread-safe, immutable.
class OptOuts {
 public:
  OptOuts() = default;
  explicit OptOuts(std::shared_ptr<const SignalMapping> mapping) : mapping_(std::move(mapping)) {}

  [[nodiscard]] bool isSignalOn() const noexcept { return mapping_ != nullptr; }
  // Whether a signal counts as an opt-out of the purpose. Never against the user's own answer. Allocates nothing.
  [[nodiscard]] bool include(std::int64_t purposeId, const StoredValues& stored) const {
    return mapping_ && mapping_->covers(purposeId) && !stored.isAnswered(purposeId);
  }

 private:
  std::shared_ptr<const SignalMapping> mapping_;
};

}  // namespace quillon
