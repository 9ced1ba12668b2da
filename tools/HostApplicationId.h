#pragma once

namespace quillon::tools {

// Names the data folder of `quillon-consent host`, which `quillon-consent store` reads by default.
inline constexpr const char* hostApplicationId = "quillon-consent-host";

}  // namespace quillon::tools
