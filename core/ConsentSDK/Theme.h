// The fonts and colours that the host or the banner's configuration gave the screens.
#pragma once

#include <mutex>
#include <optional>

#include "quillon/BannerConfig.h"

namespace quillon {

// Thread-safe.
class Theme {
 public:
  struct Fonts {
    std::optional<CustomFont> heading = std::nullopt;
    std::optional<CustomFont> body = std::nullopt;
    std::optional<CustomFont> subHeading = std::nullopt;
    std::optional<CustomFont> headingLight = std::nullopt;
  };

  // Replaces the fonts and colours that are given; the others stay.
  void registerFonts(Fonts fonts);
  void registerColors(CustomColors colors);

  Fonts fonts() const;
  std::optional<CustomColors> colors() const;

 private:
  mutable std::mutex mutex_;
  Fonts fonts_;
  std::optional<CustomColors> colors_;
};

}  // namespace quillon
