#include "platform/linux/StoredValue.h"

#include <zlib.h>

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
  StoredValue operator()(const std::vector<std::int64_t>& values) const {
    std::string text;
    for (const auto value : values) text += (text.empty() ? "" : " ") + std::to_string(value);
    return {"integers", std::move(text)};
  }
  StoredValue operator()(const std::vector<std::string>& values) const {
    std::string text;
    for (const auto& value : values) text += std::to_string(value.size()) + ':' + value;
    return {"strings", std::move(text)};
  }
};

std::optional<std::int64_t> integer(std::string_view text) {
  std::int64_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc{} || end != text.data() + text.size()) return std::nullopt;
  return value;
}

std::optional<PropertyValue> integers(std::string_view text) {
  std::vector<std::int64_t> values;
  for (bool more = !text.empty(); more;) {
    const auto space = text.find(' ');
    const auto value = integer(text.substr(0, space));
    if (!value) return std::nullopt;
    values.push_back(*value);
    more = space != text.npos;
    if (more) text.remove_prefix(space + 1);
  }
  return values;
}

std::optional<PropertyValue> strings(std::string_view text) {
  std::vector<std::string> values;
  while (!text.empty()) {
    const auto colon = text.find(':');
    const auto length = integer(text.substr(0, colon));
    if (!length || colon == text.npos) return std::nullopt;
    text.remove_prefix(colon + 1);
    if (*length < 0 || static_cast<std::uint64_t>(*length) > text.size()) return std::nullopt;
    values.emplace_back(text.substr(0, static_cast<std::size_t>(*length)));
    text.remove_prefix(static_cast<std::size_t>(*length));
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
  if (type == "integers") return integers(text);
  if (type == "strings") return strings(text);
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
