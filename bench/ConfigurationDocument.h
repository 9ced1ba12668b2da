// A large application's configuration.
#pragma once

#include <string>

namespace quillon::bench {

/// A document of about 1.5 MB with every key set: hundreds of components with logos, texts in many languages and
/// scripts, HTML with escapes. The same in every call.
[[nodiscard]] std::string largeConfigurationDocument();

}  // namespace quillon::bench
