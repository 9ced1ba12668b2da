/// @file
/// Whether the SDK has a configuration.
#pragma once

#include <optional>
#include <string_view>

namespace quillon {

/// Readiness of the SDK, observed with ConsentSDK::isReady().
enum class SDKStatus {
  ready = 0,        ///< a configuration is available
  unavailable = 1,  ///< no configuration could be loaded; also the state before setup()
  fetching = 2,     ///< a download is running
};

/// The fixed message of a status, such as "SDK CDN is ready to use!".
[[nodiscard]] std::string_view status(SDKStatus value) noexcept;

/// The status with raw value @p rawValue; nullopt for any number but 0, 1 and 2.
[[nodiscard]] std::optional<SDKStatus> sdkStatus(int rawValue) noexcept;

}  // namespace quillon
