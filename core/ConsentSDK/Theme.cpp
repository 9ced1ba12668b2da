#include "core/ConsentSDK/Theme.h"

#include <utility>

namespace quillon {
namespace {

template <class T>
void replace(std::optional<T>& present, std::optional<T> given) {
  if (given) present = std::move(given);
}

}  // namespace

void Theme::registerFonts(Fonts fonts) {
  const std::scoped_lock lock(mutex_);
  replace(fonts_.heading, std::move(fonts.heading));
  replace(fonts_.body, std::move(fonts.body));
  replace(fonts_.subHeading, std::move(fonts.subHeading));
  replace(fonts_.headingLight, std::move(fonts.headingLight));
}

void Theme::registerColors(CustomColors colors) {
  const std::scoped_lock lock(mutex_);
  const auto earlier = std::exchange(colors_, std::move(colors));
  if (!earlier) return;
  const auto keep = [&](std::optional<std::string> CustomColors::* role) {
    if (!((*colors_).*role)) (*colors_).*role = (*earlier).*role;
  };
  keep(&CustomColors::togglePrimarycolor);
  keep(&CustomColors::toggleSecondarycolor);
  keep(&CustomColors::purposeDisclaimerTextColor);
  keep(&CustomColors::purposeDisclaimerBackgroundColor);
}

Theme::Fonts Theme::fonts() const {
  const std::scoped_lock lock(mutex_);
  return fonts_;
}

std::optional<CustomColors> Theme::colors() const {
  const std::scoped_lock lock(mutex_);
  return colors_;
}

}  // namespace quillon
