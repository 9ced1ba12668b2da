// The lint rules by name.
#pragma once

#include <span>
#include <string_view>

#include "quillon/MainConfiguration.h"
#include "tools/validate/Finding.h"

namespace quillon::tools {

struct Rule {
  std::string_view name;
  Level level;
  std::string_view expects;
  // Null for rules about document form, which are implemented separately.
  void (*check)(const MainConfiguration& configuration, const Report& report) = nullptr;
};

// Problems that users would notice. Each rule's time and number of findings are linear in the configuration's size.
[[nodiscard]] std::span<const Rule> lintRules();

// The SDK's own requirements on a document, and on publishing one (Check.cpp).
[[nodiscard]] std::span<const Rule> documentRules();

}  // namespace quillon::tools
