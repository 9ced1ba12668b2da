/// @file
/// Whether the SDK has a configuration to work with.
#pragma once

#include <optional>
#include <string_view>

namespace quillon {

/// Readiness of the SDK, observed with ConsentSDK::isReady().
enum class SDKStatus {
  ready = 0,        ///< a configuration is at hand
  unavailable = 1,  ///< no configuration could be had (also the state before set-up)
  fetching = 2,     ///< a download is under way
};

/// The fixed message of a status, such as "SDK CDN is ready to use!".
[[nodiscard]] std::string_view status(SDKStatus value) noexcept;

/// The status with raw value @p rawValue; nothing for any number but 0, 1 and 2.
[[nodiscard]] std::optional<SDKStatus> sdkStatus(int rawValue) noexcept;

}  // namespace quillon
