// The logger bound to a source unit.
#pragma once

#include <source_location>
#include <string_view>

#include "core/Text/LogText.h"
#include "quillon/SDKLogger.h"

namespace quillon {

// The unit names in the log; several source files may share one.
namespace unit {
inline constexpr std::string_view webView = "Common/WebView/WebViewModel";
inline constexpr std::string_view consentBanner = "ConsentBanner/ConsentBannerViewModel";
inline constexpr std::string_view consentSDK = "ConsentSDK/ConsentSDK";
inline constexpr std::string_view cdnUtils = "ConsentSDK/ConsentSDK+CDNUtils";
inline constexpr std::string_view decisions = "ConsentSDK/ConsentSDK+Decisions";
inline constexpr std::string_view networkAPIs = "ConsentSDK/ConsentSDK+NetworkAPIs";
inline constexpr std::string_view screens = "ConsentSDK/ConsentSDK+Screens";
inline constexpr std::string_view notices = "History/NoticeArchive";
inline constexpr std::string_view consentModeHelper = "Integrations/GoogleConsentModeHelper";
inline constexpr std::string_view networkManager = "Network/ConsentNetworkManager";
inline constexpr std::string_view permissionManager = "Permissions/PermissionManager";
inline constexpr std::string_view userDefaultManager = "Persistance/UserDefaults/UserDefaultManager";
inline constexpr std::string_view purposeManager = "Purposes/PurposeManager";
}  // namespace unit

// Each call adds function and line.
class UnitLog {
 public:
  UnitLog(SDKLogger& logger, std::string_view unit) noexcept : logger_(logger), unit_(unit) {}

  void operator()(LogLevel level, std::string_view message, std::string_view function,
                  std::source_location place = std::source_location::current()) const {
    logger_.log(message, level, function, unit_, static_cast<int>(place.line()));
  }

 private:
  SDKLogger& logger_;
  std::string_view unit_;
};

}  // namespace quillon
