// The rules for valid configurations, by their names.
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
  // Null for the rules about the form of documents, which have code of their own.
  void (*check)(const MainConfiguration& configuration, const Report& report) = nullptr;
};

// What would disappoint a user. Time and number of findings of each are linear in the size of the configuration.
[[nodiscard]] std::span<const Rule> lintRules();

// What the SDK itself expects of a document, and of a publication (Check.cpp).
[[nodiscard]] std::span<const Rule> documentRules();

}  // namespace quillon::tools
