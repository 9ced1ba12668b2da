// The language of the device.
#pragma once

#include <mutex>
#include <string>

#include "platform/Platform.h"

namespace quillon {

// Thread-safe. The device's setting is read once; later changes are ignored.
class LocaleUtils {
 public:
  // The platform must outlive it. Stops the process on first use if the device has no preferred language.
  explicit LocaleUtils(const Platform& platform) noexcept : platform_(platform) {}

  // The device's first preferred language, such as "zh-Hant-TW".
  const std::string& preferredLanguage() const;
  // Its part before the first "-".
  std::string languageCode() const;
  // The language code with retired codes replaced.
  std::string currentLanguageCode() const;

 private:
  const Platform& platform_;
  mutable std::once_flag read_;
  mutable std::string preferred_;
};

}  // namespace quillon
