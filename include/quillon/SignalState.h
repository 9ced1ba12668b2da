/// @file
/// The decisions that the strings of the advertising trade are made from.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace quillon {

/// What holds at one moment. A plain value.
struct SignalState {
  /// A purpose of the configuration in force.
  struct Purpose {
    std::int64_t id = 0;
    /// As the application may act on it: a decision or a privacy signal against it, and every doubt, make it false.
    bool isGranted = false;
    /// The user gave that answer, and no default.
    bool isExplicit = false;
    /// The sdk_id of each of its components.
    std::vector<std::int64_t> sdkIds = {};

    bool operator==(const Purpose&) const = default;
  };

  std::vector<Purpose> purposes = {};
  /// The user was shown what is asked, and answered or was given the defaults.
  bool isDisclosed = false;
  /// When the latest of these decisions was made, in UTC.
  std::chrono::sys_seconds decidedAt = {};
  /// In which the user was addressed, such as "de".
  std::string language = {};
  /// Where the user is, such as "DE" or "US#CA"; nothing while it is not known.
  std::optional<std::string> place = std::nullopt;
  /// Whether Global Privacy Control is on; nothing when nobody asked for it.
  std::optional<bool> globalPrivacyControl = std::nullopt;

  bool operator==(const SignalState&) const = default;
};

}  // namespace quillon
