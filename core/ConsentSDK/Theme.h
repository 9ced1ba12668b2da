// The screens' fonts and colours, from the application and the configuration.
#pragma once

#include <mutex>
#include <optional>

#include "platform/ScreenServices.h"
#include "quillon/BannerConfig.h"

namespace quillon {

// Thread-safe.
class Theme {
 public:
  // Sets the application's fonts and colours; roles not given, or empty, keep their value.
  void registerFonts(ScreenFonts fonts);
  void registerColors(const CustomColors& colors);

  // Sets the configuration's colours.
  void configureColors(std::optional<CustomColors> palette);

  ScreenFonts fonts() const;
  // Per role the configuration's colour, else the application's, else an empty one; nullopt when neither set any.
  std::optional<CustomColors> colors() const;

 private:
  mutable std::mutex mutex_;  // guards the members below
  ScreenFonts fonts_;
  std::optional<CustomColors> registered_;
  std::optional<CustomColors> configured_;
};

}  // namespace quillon
