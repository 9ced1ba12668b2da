// Codes of languages and places, as the SDK compares them.
#pragma once

#include <string>
#include <string_view>

namespace quillon::tools {

// What is wrong with the key of a text: it is no language in lower case, such as "de" or "pt-br". Empty for none.
[[nodiscard]] std::string languageProblem(std::string_view code);

// What is wrong with a place: it is none that the location look-up names, such as "DE" or "US#CA". Empty for none.
[[nodiscard]] std::string placeProblem(std::string_view place);

// Whether a country, or a part of one (ISO 3166-1 and -2, without the hyphen: "US", "CA").
[[nodiscard]] bool isCountry(std::string_view code);
[[nodiscard]] bool isPartOf(std::string_view country, std::string_view part);
[[nodiscard]] bool isPartOfAny(std::string_view part);

}  // namespace quillon::tools
