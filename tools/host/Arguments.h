// Typed access to a request's arguments.
#pragma once

#include <boost/json/object.hpp>
#include <boost/json/value_to.hpp>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace quillon::tools {

// A malformed request, described for its author.
struct RequestError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// The value of a key; nullopt when absent or null. Throws RequestError for another type.
template <class T>
std::optional<T> optionalArgument(const boost::json::object& request, std::string_view name) {
  const auto* value = request.if_contains(name);
  if (!value || value->is_null()) return std::nullopt;
  auto result = boost::json::try_value_to<T>(*value);
  if (!result) throw RequestError("\"" + std::string(name) + "\" is of the wrong type");
  return std::move(*result);
}

// As above; throws RequestError when absent too.
template <class T>
T argument(const boost::json::object& request, std::string_view name) {
  auto value = optionalArgument<T>(request, name);
  if (!value) throw RequestError("\"" + std::string(name) + "\" is missing");
  return std::move(*value);
}

}  // namespace quillon::tools
