// A locale with fixed languages.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "platform/Locale.h"

namespace quillon {

// Thread-safe.
class FixedLocale : public Locale {
 public:
  explicit FixedLocale(std::vector<std::string> languages) : languages_(std::move(languages)) {}

  std::vector<std::string> preferredLanguages() const override { return languages_; }

 private:
  const std::vector<std::string> languages_;
};

}  // namespace quillon
