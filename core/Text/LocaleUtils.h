// The language of the device.
#pragma once

#include <mutex>
#include <string>

#include "platform/Platform.h"

namespace quillon {

// Thread-safe. The device's setting is read once; a change while the process runs is not followed.
class LocaleUtils {
 public:
  // The platform must outlive it. A device without any preferred language stops the process at the first question.
  explicit LocaleUtils(const Platform& platform) noexcept : platform_(platform) {}

  // The device's first preferred language, such as "zh-Hant-TW".
  const std::string& preferredLanguage() const;
  // Its part before the first "-".
  std::string languageCode() const;
  // The same with retired codes replaced.
  std::string currentLanguageCode() const;

 private:
  const Platform& platform_;
  mutable std::once_flag read_;
  mutable std::string preferred_;
};

}  // namespace quillon
