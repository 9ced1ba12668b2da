#include "core/ConsentSDK/Theme.h"

#include <utility>

namespace quillon {
namespace {

template <class T>
void replace(std::optional<T>& present, std::optional<T> given) {
  if (given) present = std::move(given);
}

void replace(std::string& present, const std::string& given) {
  if (!given.empty()) present = given;
}

void replace(std::optional<std::string>& present, const std::optional<std::string>& given) {
  if (given && !given->empty()) present = given;
}

// Replaces every role that is given.
void replaceRoles(CustomColors& present, const CustomColors& given) {
  const auto take = [&](auto... roles) { (replace(present.*roles, given.*roles), ...); };
  take(&CustomColors::buttonBackground, &CustomColors::buttonText, &CustomColors::buttonBorder,
       &CustomColors::bannerBackground, &CustomColors::bannerText, &CustomColors::bannerLinks,
       &CustomColors::preferenceCenterFooterBackground, &CustomColors::preferenceCenterFooterSelector,
       &CustomColors::togglePrimarycolor, &CustomColors::toggleSecondarycolor,
       &CustomColors::purposeDisclaimerTextColor, &CustomColors::purposeDisclaimerBackgroundColor);
}

}  // namespace

void Theme::registerFonts(ScreenFonts fonts) {
  const std::scoped_lock lock(mutex_);
  replace(fonts_.heading, std::move(fonts.heading));
  replace(fonts_.body, std::move(fonts.body));
  replace(fonts_.subHeading, std::move(fonts.subHeading));
  replace(fonts_.headingLight, std::move(fonts.headingLight));
}

void Theme::registerColors(const CustomColors& colors) {
  const std::scoped_lock lock(mutex_);
  if (!registered_) registered_.emplace();
  replaceRoles(*registered_, colors);
}

void Theme::configureColors(std::optional<CustomColors> palette) {
  const std::scoped_lock lock(mutex_);
  configured_ = std::move(palette);
}

ScreenFonts Theme::fonts() const {
  const std::scoped_lock lock(mutex_);
  return fonts_;
}

std::optional<CustomColors> Theme::colors() const {
  const std::scoped_lock lock(mutex_);
  if (!registered_) return configured_;
  CustomColors colors = *registered_;
  if (configured_) replaceRoles(colors, *configured_);
  return colors;
}

}  // namespace quillon
