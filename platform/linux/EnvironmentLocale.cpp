#include "platform/linux/EnvironmentLocale.h"

#include <algorithm>
#include <cstdlib>
#include <string_view>

namespace quillon {
namespace {

constexpr std::size_t longestEntry = 64;
constexpr std::size_t mostLanguages = 32;

// Locale-independent, unlike <cctype>.
constexpr bool isLetter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}
constexpr bool isDigit(char c) {
  return c >= '0' && c <= '9';
}
constexpr char lower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}
constexpr char upper(char c) {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

// Appends a subtag in its customary case: zh-Hant-TW.
bool appendSubtag(std::string& tag, std::string_view part) {
  const bool letters = std::ranges::all_of(part, isLetter);
  if (part.empty() || part.size() > 8) return false;
  if (!std::ranges::all_of(part, [](char c) { return isLetter(c) || isDigit(c); })) return false;
  const bool language = tag.empty();
  if (language && (!letters || part.size() < 2)) return false;
  if (!language) tag += '-';
  for (std::size_t i = 0; i < part.size(); ++i) {
    const bool capital = !language && letters && (part.size() == 2 || (part.size() == 4 && i == 0));
    tag += capital ? upper(part[i]) : lower(part[i]);
  }
  return true;
}

// The BCP 47 tag of a locale name such as "zh_Hant_TW.UTF-8@x"; nullopt for an invalid name.
std::optional<std::string> languageTag(std::string_view name) {
  if (name.size() > longestEntry) return std::nullopt;
  std::string_view rest = name.substr(0, name.find_first_of(".@"));  // drops code set and modifier
  if (rest == "C" || rest == "POSIX") return "en";
  std::string tag;
  while (true) {
    const auto end = rest.find_first_of("_-");
    if (!appendSubtag(tag, rest.substr(0, end))) return std::nullopt;
    if (end == std::string_view::npos) return tag;
    rest.remove_prefix(end + 1);
  }
}

}  // namespace

EnvironmentLocale::EnvironmentLocale()
    : EnvironmentLocale([](const char* name) -> std::optional<std::string> {
        const char* value = std::getenv(name);
        return value == nullptr ? std::nullopt : std::optional<std::string>(value);
      }) {}

EnvironmentLocale::EnvironmentLocale(const Getter& getter) {
  for (const char* variable : {"LANGUAGE", "LC_ALL", "LC_MESSAGES", "LANG"}) {
    const std::string value = getter(variable).value_or("");
    for (std::string_view rest = value; !rest.empty() && languages_.size() < mostLanguages;) {
      const auto end = std::min(rest.find(':'), rest.size());
      const auto tag = languageTag(rest.substr(0, end));
      if (tag && std::ranges::find(languages_, *tag) == languages_.end()) languages_.push_back(*tag);
      rest.remove_prefix(std::min(end + 1, rest.size()));
    }
  }
  if (languages_.empty()) languages_.emplace_back("en");
}

}  // namespace quillon
