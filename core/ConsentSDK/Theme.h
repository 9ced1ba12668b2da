// The fonts and colours that the application and the banner's configuration gave the screens.
#pragma once

#include <mutex>
#include <optional>

#include "platform/ScreenServices.h"
#include "quillon/BannerConfig.h"

namespace quillon {

// Thread-safe.
class Theme {
 public:
  // The application's: replaces the fonts and colours that are given; the others stay. An empty colour is none.
  void registerFonts(ScreenFonts fonts);
  void registerColors(const CustomColors& colors);

  // The configuration's, for as long as that configuration is shown.
  void configureColors(std::optional<CustomColors> palette);

  ScreenFonts fonts() const;
  // For each role the configuration's colour, else the application's, else an empty one; nothing when neither gave any.
  std::optional<CustomColors> colors() const;

 private:
  mutable std::mutex mutex_;  // guards the members below
  ScreenFonts fonts_;
  std::optional<CustomColors> registered_;
  std::optional<CustomColors> configured_;
};

}  // namespace quillon
