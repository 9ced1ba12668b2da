#include "core/Text/LocaleUtils.h"

#include <array>
#include <utility>

namespace quillon {
namespace {

// Retired codes that some systems still report.
constexpr std::array<std::pair<std::string_view, std::string_view>, 3> substitutions{{
    {"iw", "he"},
    {"in", "id"},
    {"ji", "yi"},
}};

}  // namespace

const std::string& LocaleUtils::preferredLanguage() const {
  std::call_once(read_, [this] {
    auto languages = platform_.locale->preferredLanguages();
    if (languages.empty()) platform_.console->fatal("The device has no preferred language", "LocaleUtils");
    preferred_ = std::move(languages.front());
  });
  return preferred_;
}

std::string LocaleUtils::languageCode() const {
  const std::string& preferred = preferredLanguage();
  return preferred.substr(0, preferred.find('-'));
}

std::string LocaleUtils::currentLanguageCode() const {
  std::string code = languageCode();
  for (const auto& [retired, present] : substitutions) {
    if (code == retired) return std::string(present);
  }
  return code;
}

}  // namespace quillon
