/// @file
/// The decisions from which the advertising signals are computed.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace quillon {

/// A snapshot of the consents. A plain value.
struct SignalState {
  /// A purpose of the configuration in force.
  struct Purpose {
    std::int64_t id = 0;
    /// Whether the application may act on the purpose, as ConsentSDK::isAllowed() returns: false on a refusal, an
    /// opposing privacy signal or any doubt.
    bool isGranted = false;
    /// Answered by the user, not a default.
    bool isExplicit = false;
    /// The sdk_id of each component.
    std::vector<std::int64_t> sdkIds = {};

    bool operator==(const Purpose&) const = default;
  };

  std::vector<Purpose> purposes = {};
  /// The request was shown to the user, and answered or closed with the defaults.
  bool isDisclosed = false;
  /// Time of the latest decision, in UTC.
  std::chrono::sys_seconds decidedAt = {};
  /// Language of the user interface, such as "de".
  std::string language = {};
  /// The user's location, such as "DE" or "US#CA"; nullopt while unknown.
  std::optional<std::string> place = std::nullopt;
  /// Whether Global Privacy Control is on; nullopt when it was not queried.
  std::optional<bool> globalPrivacyControl = std::nullopt;

  bool operator==(const SignalState&) const = default;
};

}  // namespace quillon
