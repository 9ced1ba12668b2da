// What the page shows beside a document.
#pragma once

#include <boost/json/array.hpp>
#include <boost/json/object.hpp>
#include <expected>
#include <optional>
#include <string>

namespace quillon::tools {

// Findings of every kind; of a valid document also languages, colours with their contrast, what users get, and the
// comparison of what publishing would make of it with the live document, if there is a valid one.
[[nodiscard]] boost::json::object inspect(const std::string& text, const std::optional<std::string>& live);

// The document with changes, one after the other, each {"path": ["purposes", 0, ...], "value"} or {"path", "remove":
// true}; everything else stays as it is. The error tells why one of them is impossible.
[[nodiscard]] std::expected<std::string, std::string> changed(std::string text, const boost::json::array& changes);

}  // namespace quillon::tools
