// The languages that the process's environment asks for.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/Locale.h"

namespace quillon {

// Thread-safe. The environment is read once, at construction: LANGUAGE (a list), then LC_ALL, LC_MESSAGES and LANG,
// without duplicates. "C" and "POSIX" count as English, as does an environment that names no language.
class EnvironmentLocale : public Locale {
 public:
  // The value of an environment variable; nothing when it is not set.
  using Getter = std::function<std::optional<std::string>(const char* name)>;

  EnvironmentLocale();
  explicit EnvironmentLocale(const Getter& getter);

  std::vector<std::string> preferredLanguages() const override { return languages_; }

 private:
  std::vector<std::string> languages_;
};

}  // namespace quillon
