#include "platform/linux/StoredValue.h"

#include <zlib.h>

#include <boost/json.hpp>
#include <charconv>

namespace quillon {

namespace {

struct ToStored {
  StoredValue operator()(bool value) const { return {"boolean", value ? "true" : "false"}; }
  StoredValue operator()(std::int64_t value) const { return {"integer", std::to_string(value)}; }
  StoredValue operator()(const std::string& value) const { return {"string", value}; }
  StoredValue operator()(PropertyDate value) const {
    return {"date", std::to_string(std::int64_t{value.time_since_epoch().count()})};
  }
  StoredValue operator()(const std::vector<std::int64_t>& values) const { return {"integers", array(values)}; }
  StoredValue operator()(const std::vector<std::string>& values) const { return {"strings", array(values)}; }

  template <class Element>
  static std::string array(const std::vector<Element>& values) {
    return boost::json::serialize(boost::json::array(values.begin(), values.end()));
  }
};

std::optional<std::int64_t> integer(std::string_view text) {
  std::int64_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc{} || end != text.data() + text.size()) return std::nullopt;
  return value;
}

template <class Element>
std::optional<PropertyValue> array(std::string_view text) {
  // What the host stored is given back byte for byte, well-formed or not.
  boost::json::parse_options options;
  options.allow_invalid_utf8 = true;
  boost::json::error_code error;
  const auto document = boost::json::parse(text, error, {}, options);
  if (error || !document.is_array()) return std::nullopt;
  std::vector<Element> values;
  values.reserve(document.get_array().size());
  for (const auto& element : document.get_array()) {
    if constexpr (std::is_same_v<Element, std::string>) {
      if (!element.is_string()) return std::nullopt;
      values.emplace_back(element.get_string());
    } else {
      if (!element.is_int64()) return std::nullopt;
      values.push_back(element.get_int64());
    }
  }
  return values;
}

}  // namespace

StoredValue toStored(const PropertyValue& value) {
  return std::visit(ToStored{}, value);
}

std::optional<PropertyValue> fromStored(std::string_view type, std::string_view text) {
  if (type == "string") return std::string(text);
  if (type == "boolean") {
    if (text == "true") return true;
    if (text == "false") return false;
    return std::nullopt;
  }
  if (type == "integer") return integer(text);
  if (type == "date") {
    const auto milliseconds = integer(text);
    if (!milliseconds) return std::nullopt;
    return PropertyDate(std::chrono::milliseconds(*milliseconds));
  }
  if (type == "integers") return array<std::int64_t>(text);
  if (type == "strings") return array<std::string>(text);
  return std::nullopt;
}

std::uint32_t storedChecksum(std::string_view key, std::string_view type, std::string_view text) {
  uLong checksum = 0;
  for (const auto part : {key, type, text}) {
    constexpr Bytef end = 0;
    checksum = crc32_z(checksum, reinterpret_cast<const Bytef*>(part.data()), part.size());
    checksum = crc32_z(checksum, &end, 1);
  }
  return static_cast<std::uint32_t>(checksum);
}

}  // namespace quillon
