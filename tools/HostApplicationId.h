#pragma once

namespace quillon::tools {

// The data folder name of `quillon-consent host`, which `quillon-consent store` reads by default.
inline constexpr const char* hostApplicationId = "quillon-consent-host";

}  // namespace quillon::tools
