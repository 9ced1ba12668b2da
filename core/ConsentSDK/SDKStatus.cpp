#include "quillon/SDKStatus.h"

#include "core/Json/RawValues.h"

namespace quillon {
namespace {

constexpr RawValue<SDKStatus> kMessages[] = {
    {SDKStatus::ready, "SDK CDN is ready to use!"},
    {SDKStatus::unavailable, "SDK CDN is not available!"},
    {SDKStatus::fetching, "fetching SDK CDN..."},
};

}  // namespace

std::string_view status(SDKStatus value) noexcept {
  return textOf<SDKStatus>(kMessages, value);
}

std::optional<SDKStatus> sdkStatus(int rawValue) noexcept {
  if (rawValue < 0 || rawValue > 2) return std::nullopt;
  return static_cast<SDKStatus>(rawValue);
}

}  // namespace quillon
