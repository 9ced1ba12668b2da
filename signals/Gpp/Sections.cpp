#include "signals/Gpp/Sections.h"

#include <algorithm>

namespace quillon::signals {
namespace {

struct OtherSection {
  std::uint16_t id;
  std::string_view prefix;
};

// Sections that are known by name only, except the European one.
constexpr OtherSection otherSections[] = {
    {1, "tcfeuv1"},
    {tcfEuSection, "tcfeuv2"},
    {5, "tcfcav1"},
    {6, "uspv1"},
};

}  // namespace

const UsSection* usSection(std::uint16_t id) noexcept {
  const auto section = std::ranges::find(usSections(), id, &UsSection::id);
  return section == usSections().end() ? nullptr : &*section;
}

std::string_view sectionPrefix(std::uint16_t id) noexcept {
  if (const auto* const section = usSection(id)) return section->prefix();
  const auto* const other = std::ranges::find(otherSections, id, &OtherSection::id);
  return other == std::end(otherSections) ? std::string_view() : other->prefix;
}

std::uint16_t sectionOfPrefix(std::string_view prefix) noexcept {
  const auto section = std::ranges::find(usSections(), prefix, &UsSection::prefix);
  if (section != usSections().end()) return section->id;
  const auto* const other = std::ranges::find(otherSections, prefix, &OtherSection::prefix);
  return other == std::end(otherSections) ? 0 : other->id;
}

}  // namespace quillon::signals
