// What the strings are made from, at one moment.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace quillon::signals {

struct SignalState {
  struct Purpose {
    std::int64_t id = 0;
    // As the application may act on it: a decision or a privacy signal against it, and every doubt, make it false.
    bool isGranted = false;
    // The user gave that answer, and no default.
    bool isExplicit = false;
    std::vector<std::int64_t> sdkIds = {};  // its components
  };

  std::vector<Purpose> purposes;  // of the configuration in force
  // The user was shown what is asked, and answered or was given the defaults.
  bool isDisclosed = false;
  std::chrono::sys_seconds decidedAt{};
  std::string language = {};                                // "de"
  std::optional<std::string> place = std::nullopt;          // "DE", "US#CA"; nothing while it is not known
  std::optional<bool> globalPrivacyControl = std::nullopt;  // nothing when nobody asked for it
};

}  // namespace quillon::signals
