// The user's preferred languages.
#pragma once

#include <string>
#include <vector>

namespace quillon {

// Thread-safe.
class Locale {
 public:
  virtual ~Locale() = default;

  // BCP 47 tags, best first ("de-DE", "zh-Hant-TW"). Empty only when the device has no language setting.
  virtual std::vector<std::string> preferredLanguages() const = 0;
};

}  // namespace quillon
