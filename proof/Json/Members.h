// Accessors for members of untrusted objects.
#pragma once

#include <boost/json/object.hpp>
#include <cstdint>
#include <optional>
#include <string_view>

namespace quillon::proof {

// The text of a member; nullopt if absent or not a string.
[[nodiscard]] inline std::optional<std::string_view> textIn(const boost::json::object& object, std::string_view key) {
  const auto* const value = object.if_contains(key);
  if (value == nullptr || !value->is_string()) return std::nullopt;
  return std::string_view(value->get_string());
}

[[nodiscard]] inline std::optional<std::int64_t> numberIn(const boost::json::object& object, std::string_view key) {
  const auto* const value = object.if_contains(key);
  if (value == nullptr || !value->is_int64()) return std::nullopt;
  return value->get_int64();
}

// Visits a member's elements if it is an array, else the member itself: JSON-LD treats both alike.
template <class Each>
void forEachIn(const boost::json::object& object, std::string_view key, const Each& each) {
  const auto* const value = object.if_contains(key);
  if (value == nullptr) return;
  if (const auto* const array = value->if_array()) {
    for (const auto& element : *array) each(element);
  } else {
    each(*value);
  }
}

}  // namespace quillon::proof
