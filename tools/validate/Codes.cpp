#include "tools/validate/Codes.h"

#include <unicode/uloc.h>
#include <unicode/unistr.h>
#include <unicode/ures.h>

#include <algorithm>
#include <map>
#include <memory>
#include <set>
#include <utility>
#include <vector>

#include "core/Text/Ascii.h"
#include "tools/document/DocumentPath.h"
#include "tools/validate/Spelling.h"

namespace quillon::tools {
namespace {

using Codes = std::set<std::string, std::less<>>;
using Names = std::map<std::string, std::string, std::less<>>;  // lower-case name to code

Codes setOf(const char* const* list) {
  Codes codes;
  for (; *list; ++list) codes.emplace(*list);
  return codes;
}

const Codes& languages() {
  static const Codes codes = setOf(uloc_getISOLanguages());
  return codes;
}

const Codes& countries() {
  static const Codes codes = setOf(uloc_getISOCountries());
  return codes;
}

std::string nameOf(const std::string& locale, decltype(&uloc_getDisplayCountry) ask) {
  UChar name[128];
  UErrorCode error = U_ZERO_ERROR;
  const auto length = ask(locale.c_str(), "en", name, static_cast<int32_t>(std::size(name)), &error);
  std::string text;
  if (U_SUCCESS(error)) icu::UnicodeString(name, length).toUTF8String(text);
  return lowerCase(std::move(text));
}

const Names& languageNames() {
  static const Names names = [] {
    // Replaced codes that are still in use.
    Names all{{"iw", "he"}, {"in", "id"}, {"ji", "yi"}};
    for (const auto& code : languages()) {
      all.emplace(nameOf(code, &uloc_getDisplayLanguage), code);
      all.emplace(uloc_getISO3Language(code.c_str()), code);
    }
    return all;
  }();
  return names;
}

const Names& countryNames() {
  static const Names names = [] {
    Names all{{"uk", "GB"}, {"el", "GR"}, {"usa", "US"}, {"america", "US"}, {"england", "GB"}};
    for (const auto& code : countries()) {
      all.emplace(nameOf("und_" + code, &uloc_getDisplayCountry), code);
      all.emplace(lowerCase(std::string(uloc_getISO3Country(("und_" + code).c_str()))), code);
    }
    return all;
  }();
  return names;
}

using Resource = std::unique_ptr<UResourceBundle, decltype(&ures_close)>;

// Adds a list's codes; "usak~l" is a range: "usak" and "usal".
void addRanges(UResourceBundle* list, Codes& codes) {
  for (int32_t i = 0; i < ures_getSize(list); ++i) {
    UErrorCode error = U_ZERO_ERROR;
    int32_t length = 0;
    const UChar* const characters = ures_getStringByIndex(list, i, &length, &error);
    if (U_FAILURE(error)) continue;
    std::string text;
    icu::UnicodeString(characters, length).toUTF8String(text);
    const auto tilde = text.find('~');
    std::string code = text.substr(0, tilde);
    codes.insert(code);
    if (tilde == std::string::npos || code.empty()) continue;
    while (code.back() < text.back()) {
      ++code.back();
      codes.insert(code);
    }
  }
}

// All subdivisions, such as "usca"; empty if the installed ICU data lacks them.
const Codes& parts() {
  static const Codes codes = [] {
    Codes all;
    UErrorCode error = U_ZERO_ERROR;
    const Resource data(ures_openDirect(nullptr, "supplementalData", &error), &ures_close);
    const Resource validity(ures_getByKey(data.get(), "idValidity", nullptr, &error), &ures_close);
    const Resource lists(ures_getByKey(validity.get(), "subdivision", nullptr, &error), &ures_close);
    for (const char* const list : {"regular", "deprecated"}) {
      const Resource found(ures_getByKey(lists.get(), list, nullptr, &error), &ures_close);
      if (U_SUCCESS(error)) addRanges(found.get(), all);
    }
    return all;
  }();
  return codes;
}

std::string meantCode(const Names& names, const std::string& name) {
  if (const auto found = names.find(name); found != names.end()) return found->second;
  std::vector<std::string_view> candidates;
  for (const auto& [known, code] : names) {
    if (known.size() > 3) candidates.push_back(known);
  }
  const auto meant = name.size() > 3 ? nearest(name, candidates) : std::string_view();
  return meant.empty() ? "" : names.find(meant)->second;
}

std::string meaning(const std::string& code) {
  return code.empty() ? "" : "; did you mean " + inQuotes(code) + "?";
}

// "US-CA", "us#ca" and "US_CA" mean "US#CA"; "Germany" means "DE".
std::string meantPlace(std::string_view place) {
  const std::string upper = upperCase(std::string(trimmed(place)));
  if (isCountry(upper)) return upper;
  const auto separator = upper.find_first_of("#-_/ :.");
  if (separator != std::string::npos) {
    const auto country = upper.substr(0, separator);
    const auto part = upper.substr(separator + 1);
    if (isCountry(country) && isPartOf(country, part)) return country + "#" + part;
  }
  return meantCode(countryNames(), lowerCase(upper));
}

}  // namespace

bool isCountry(std::string_view code) {
  return countries().contains(code);
}

bool isPartOf(std::string_view country, std::string_view part) {
  if (part.empty() || part.size() > 3 || upperCase(std::string(part)) != part) return false;
  return parts().empty() || parts().contains(lowerCase(std::string(country) + std::string(part)));
}

bool isPartOfAny(std::string_view part) {
  return std::ranges::any_of(countries(), [part](const std::string& country) { return isPartOf(country, part); });
}

std::string languageProblem(std::string_view code) {
  const std::string lower = lowerCase(std::string(code));
  const auto language = std::string_view(lower).substr(0, lower.find_first_of("-_"));
  const auto rest = std::string_view(lower).substr(language.size());
  if (!languages().contains(language)) {
    return inQuotes(code) + " is no language" + meaning(meantCode(languageNames(), lower));
  }
  const bool isPlain = rest.empty() || (rest.size() > 2 && std::ranges::all_of(rest.substr(1), [](char c) {
                                          return isLetter(c) || isDigit(c) || c == '-';
                                        }));
  if (lower == code && isPlain && !rest.starts_with('_')) return {};
  std::string meant = lower;
  std::ranges::replace(meant, '_', '-');
  return inQuotes(code) + " is no language as the SDK spells it" + (isPlain ? meaning(meant) : "");
}

std::string placeProblem(std::string_view place) {
  const auto separator = place.find('#');
  const auto country = place.substr(0, separator);
  if (isCountry(country)) {
    if (separator == std::string_view::npos || isPartOf(country, place.substr(separator + 1))) return {};
    return inQuotes(place.substr(separator + 1)) + " is no part of " + inQuotes(country) + meaning(meantPlace(place));
  }
  const std::string meant = meantPlace(place);
  return inQuotes(place) + " is no place as the location look-up names it" +
         (meant.empty() ? ", such as \"DE\" or \"US#CA\"" : meaning(meant));
}

}  // namespace quillon::tools
