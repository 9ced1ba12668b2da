#include "tools/signals/StringFromJson.h"

#include <algorithm>
#include <boost/json/array.hpp>
#include <boost/json/object.hpp>
#include <charconv>
#include <limits>
#include <optional>

#include "signals/Gpp/GppString.h"

namespace quillon::tools {
namespace {

using namespace quillon::signals;
using boost::json::value;

template <class T>
using Result = std::expected<T, std::string>;

constexpr std::int64_t kTimeUnitsASecond = 10;

std::unexpected<std::string> error(std::string_view path, std::string_view what) {
  return std::unexpected(std::string(path).append(": ").append(what));
}

std::string_view textOf(boost::json::string_view text) {
  return {text.data(), text.size()};
}

Result<std::int64_t> readInteger(const value& json, std::int64_t largest) {
  const auto* const number = json.if_int64();
  if (!number) return std::unexpected("expected an integer");
  if (*number < 0 || *number > largest) return std::unexpected("is not from 0 to " + std::to_string(largest));
  return *number;
}

Result<Numbers> readNumbers(const value& json, std::int64_t largest) {
  const auto* const list = json.if_array();
  if (!list) return std::unexpected("expected a list of integers");
  Numbers numbers;
  for (const auto& element : *list) {
    const auto number = readInteger(element, largest);
    if (!number) return std::unexpected(number.error());
    numbers.push_back(static_cast<Numbers::value_type>(*number));
  }
  return numbers;
}

Result<Ids> readIds(const value& json) {
  auto ids = readNumbers(json, std::numeric_limits<Ids::value_type>::max());
  if (!ids) return ids;
  normalize(*ids);
  if (!ids->empty() && ids->front() == 0) return std::unexpected("the ID 0 does not exist");
  return ids;
}

Result<std::string> readLetters(const value& json, std::size_t count) {
  const auto* const text = json.if_string();
  std::string letters(text ? textOf(*text) : std::string_view());
  for (char& c : letters) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  }
  const bool sound =
      letters.size() == count && std::ranges::all_of(letters, [](char c) { return c >= 'A' && c <= 'Z'; });
  return sound ? Result<std::string>(letters) : std::unexpected("expected " + std::to_string(count) + " letters");
}

Result<Restriction> readRestriction(const value& json) {
  const auto* const object = json.if_object();
  if (!object || object->size() != 3) return std::unexpected("expected objects of three members");
  const auto member = [&](std::string_view name) -> const value& {
    static const value missing;
    const auto* const found = object->if_contains(name);
    return found ? *found : missing;
  };
  const auto purposeId = readInteger(member(restrictionNames.purposeId), 63);
  if (!purposeId) return error(restrictionNames.purposeId, purposeId.error());
  const auto type = readInteger(member(restrictionNames.type), 3);
  if (!type) return error(restrictionNames.type, type.error());
  auto ids = readIds(member(restrictionNames.vendorIds));
  if (!ids) return error(restrictionNames.vendorIds, ids.error());
  return Restriction{static_cast<std::uint8_t>(*purposeId), static_cast<std::uint8_t>(*type), std::move(*ids)};
}

Result<std::vector<Restriction>> readRestrictions(const value& json) {
  const auto* const list = json.if_array();
  if (!list) return std::unexpected("expected a list");
  std::vector<Restriction> restrictions;
  for (const auto& element : *list) {
    auto restriction = readRestriction(element);
    if (!restriction) return std::unexpected(std::move(restriction.error()));
    restrictions.push_back(std::move(*restriction));
  }
  return restrictions;
}

template <class T>
Result<FieldValue> asValue(Result<T> value) {
  if (!value) return std::unexpected(std::move(value.error()));
  return FieldValue(std::move(*value));
}

Result<std::int64_t> readTime(const value& json, const Field& field) {
  auto time = readInteger(json, ((std::int64_t{1} << field.bits) - 1) / kTimeUnitsASecond);
  if (time) *time *= kTimeUnitsASecond;
  return time;
}

Result<FieldValue> readValue(const Field& field, const value& json) {
  switch (field.kind) {
    case FieldKind::integer:
      return asValue(readInteger(json, (std::int64_t{1} << field.bits) - 1));
    case FieldKind::boolean:
      if (const auto* const flag = json.if_bool()) return FieldValue(std::int64_t{*flag});
      return asValue(readInteger(json, 1));
    case FieldKind::time:
      return asValue(readTime(json, field));
    case FieldKind::letters:
      return asValue(readLetters(json, field.count));
    case FieldKind::set:
    case FieldKind::sizedSet:
    case FieldKind::vendors:
    case FieldKind::sections:
      return asValue(readIds(json));
    case FieldKind::values: {
      auto numbers = readNumbers(json, (std::int64_t{1} << field.bits) - 1);
      if (numbers && numbers->size() != field.count) {
        return std::unexpected("expected " + std::to_string(field.count) + " integers");
      }
      return asValue(std::move(numbers));
    }
    case FieldKind::restrictions:
      break;
  }
  return asValue(readRestrictions(json));
}

// Moves the record's members out of the object.
Result<Record> takeRecord(boost::json::object& object, const Layout& layout) {
  Record record(layout);
  for (std::size_t i = 0; i < layout.fields.size(); ++i) {
    const Field& field = layout.fields[i];
    const std::string path = std::string(layout.name) + "." + std::string(field.name);
    const auto* const member = object.if_contains(field.name);
    if (!member && field.always) continue;
    if (!member) return error(path, "is missing");
    auto value = readValue(field, *member);
    if (!value) return error(path, value.error());
    record.values()[i] = std::move(*value);
    object.erase(field.name);
  }
  return record;
}

std::optional<std::string> unknownMember(const boost::json::object& object, std::string_view path) {
  if (object.empty()) return std::nullopt;
  return std::string(path) + ": unknown member \"" + std::string(textOf(object.begin()->key())) + '"';
}

Result<Record> readSegment(const value& json, const Layout& layout) {
  if (!json.is_object()) return error(layout.name, "expected an object");
  boost::json::object object = json.get_object();
  auto record = takeRecord(object, layout);
  if (!record) return record;
  if (auto unknown = unknownMember(object, layout.name)) return std::unexpected(std::move(*unknown));
  return record;
}

Result<TcString> readTc(const boost::json::object& object) {
  TcString tc;
  bool hasCore = false;
  for (const auto& [key, json] : object) {
    const Layout* layout = nullptr;
    for (const auto* known : {&tcCore, &tcDisclosedVendors, &tcPublisher}) {
      if (textOf(key) == known->name) layout = known;
    }
    if (!layout) return error(textOf(key), "is no segment");
    auto record = readSegment(json, *layout);
    if (!record) return std::unexpected(std::move(record.error()));
    hasCore = hasCore || layout == &tcCore;
    if (layout == &tcCore) {
      tc.core = std::move(*record);
    } else {
      (layout == &tcPublisher ? tc.publisherTC : tc.disclosedVendors) = std::move(*record);
    }
  }
  if (!hasCore) return error(tcCore.name, "is missing");
  return tc;
}

Result<GppSection> readUs(const UsSection& section, const value& json) {
  if (!json.is_object()) return error(section.prefix(), "expected an object");
  boost::json::object object = json.get_object();
  auto core = takeRecord(object, section.core);
  if (!core) return std::unexpected(std::move(core.error()));
  UsString us(section);
  us.core = std::move(*core);
  if (!object.empty() && !section.subsection.fields.empty()) {
    auto subsection = takeRecord(object, section.subsection);
    if (!subsection) return std::unexpected(std::move(subsection.error()));
    us.subsection = std::move(*subsection);
  }
  if (auto unknown = unknownMember(object, section.prefix())) return std::unexpected(std::move(*unknown));
  return us;
}

Result<GppSection> readSection(std::uint16_t id, std::string_view key, const value& json) {
  if (const auto* const us = usSection(id)) return readUs(*us, json);
  if (id == tcfEuSection) {
    if (!json.is_object()) return error(key, "expected an object");
    auto tc = readTc(json.get_object());
    if (!tc) return error(key, tc.error());
    return std::move(*tc);
  }
  const auto* const text = json.if_string();
  if (!text) return error(key, "expected a text");
  return std::string(textOf(*text));
}

std::uint16_t sectionOfKey(std::string_view key) {
  if (const auto id = sectionOfPrefix(key)) return id;
  std::uint16_t id = 0;
  const auto* const end = key.data() + key.size();
  const auto [rest, failure] = std::from_chars(key.data(), end, id);
  return failure == std::errc() && rest == end ? id : std::uint16_t{0};
}

Result<GppString> readGpp(const boost::json::object& object) {
  GppString gpp;
  for (const auto& [key, json] : object) {
    if (textOf(key) == gppHeader.name) continue;
    const auto id = sectionOfKey(textOf(key));
    if (id == 0) return error(textOf(key), "is no section");
    auto section = readSection(id, textOf(key), json);
    if (!section) return std::unexpected(std::move(section.error()));
    if (!gpp.sections.emplace(id, std::move(*section)).second) return error(textOf(key), "is there twice");
  }
  if (const auto* const json = object.if_contains(gppHeader.name)) {
    const auto header = readSegment(*json, gppHeader);
    if (!header) return std::unexpected(header.error());
    if (*header != headerOf(gpp)) return error(gppHeader.name, "does not list the sections that follow");
  }
  return gpp;
}

}  // namespace

std::expected<std::string, std::string> stringFromJson(const boost::json::value& json) {
  const auto* const object = json.if_object();
  if (!object) return error("document", "expected an object");
  const auto encoded = [](const auto& string) {
    return string ? encode(*string) : std::expected<std::string, std::string>(std::unexpected(string.error()));
  };
  return object->contains(tcCore.name) ? encoded(readTc(*object)) : encoded(readGpp(*object));
}

}  // namespace quillon::tools
