// The data that the page shows about a document.
#pragma once

#include <boost/json/array.hpp>
#include <boost/json/object.hpp>
#include <expected>
#include <optional>
#include <string>

namespace quillon::tools {

// Findings of all kinds; for a valid document also its languages, colours with their contrast, the content by location,
// and the comparison of the document, as it would be published, with the live one if that is valid.
[[nodiscard]] boost::json::object inspect(const std::string& text, const std::optional<std::string>& live);

// Applies changes in order, each {"path": ["purposes", 0, ...], "value"} or {"path", "remove": true}; preserves
// everything else. The error names an impossible change.
[[nodiscard]] std::expected<std::string, std::string> changed(std::string text, const boost::json::array& changes);

}  // namespace quillon::tools
