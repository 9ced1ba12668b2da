// The languages from the process's environment.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/Locale.h"

namespace quillon {

// Thread-safe. Reads the environment once, at construction: LANGUAGE (a list), then LC_ALL, LC_MESSAGES and LANG,
// without duplicates. "C", "POSIX" and an environment without a language count as English.
class EnvironmentLocale : public Locale {
 public:
  // The value of an environment variable; nullopt when unset.
  using Getter = std::function<std::optional<std::string>(const char* name)>;

  EnvironmentLocale();
  explicit EnvironmentLocale(const Getter& getter);

  std::vector<std::string> preferredLanguages() const override { return languages_; }

 private:
  std::vector<std::string> languages_;
};

}  // namespace quillon
