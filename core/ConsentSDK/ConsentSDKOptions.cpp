#include "quillon/ConsentSDKOptions.h"

#include "core/Json/RawValues.h"

namespace quillon {
namespace {

constexpr RawValue<Mode> kModes[] = {
    {Mode::draft, "draft"},
    {Mode::live, "live"},
};

}  // namespace

std::string_view rawValue(Mode mode) noexcept {
  return textOf<Mode>(kModes, mode);
}

template <>
std::optional<Mode> fromRawValue(std::string_view text) noexcept {
  return caseOf<Mode>(kModes, text);
}

}  // namespace quillon
