// Validates language and location codes as the SDK compares them.
#pragma once

#include <string>
#include <string_view>

namespace quillon::tools {

// Describes what is wrong with the key of a text, which must be a lower-case language such as "de" or "pt-br". Empty if
// valid.
[[nodiscard]] std::string languageProblem(std::string_view code);

// Describes what is wrong with a location, which must have the form of a location look-up, such as "DE" or "US#CA".
// Empty if valid.
[[nodiscard]] std::string placeProblem(std::string_view place);

// Countries and their subdivisions (ISO 3166-1 and -2, without hyphen: "US", "CA").
[[nodiscard]] bool isCountry(std::string_view code);
[[nodiscard]] bool isPartOf(std::string_view country, std::string_view part);
[[nodiscard]] bool isPartOfAny(std::string_view part);

}  // namespace quillon::tools
