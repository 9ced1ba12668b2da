#include "tools/schema/Schema.h"

#include <boost/json/array.hpp>
#include <cstdint>
#include <limits>
#include <map>
#include <string>

#include "core/Json/JsonType.h"
#include "quillon/MainConfiguration.h"
#include "tools/document/Symbols.h"
#include "tools/schema/Descriptions.h"

namespace quillon::tools {
namespace {

namespace json = boost::json;
using Kind = JsonType::Kind;

// A type used by several keys is defined once.
class Writer {
 public:
  json::object schema() {
    json::object root = definition(jsonType<MainConfiguration>(), "configuration");
    root["$defs"] = std::move(definitions_);
    return root;
  }

 private:
  // The schema of a value of this type under `key`.
  json::object value(const JsonType& type, std::string_view key) {
    switch (type.kind) {
      case Kind::boolean:
        return {{"type", "boolean"}};
      case Kind::integer:
        return {{"type", "integer"},
                {"minimum", std::numeric_limits<std::int64_t>::min()},
                {"maximum", std::numeric_limits<std::int64_t>::max()}};
      case Kind::text:
        return {{"type", "string"}};
      case Kind::symbol:
        return symbol(type);
      case Kind::array:
        return {{"type", "array"}, {"items", value(type.element(), key)}};
      case Kind::map:
        return {{"type", "object"},
                {"additionalProperties", orNull(value(type.element(), key), type.openElement != nullptr)}};
      case Kind::record:
        break;
    }
    const auto [entry, isNew] = names_.try_emplace(&type, std::string(key));
    if (isNew) definitions_[entry->second] = definition(type, key);
    return {{"$ref", "#/$defs/" + entry->second}};
  }

  static json::object symbol(const JsonType& type) {
    if (!type.isOpen) return {{"enum", listOf(symbolsOf(type))}};
    // Editors suggest the known values; any text is valid.
    return {{"anyOf", json::array{{{"enum", listOf(knownPermissions())}}, {{"type", "string"}}}}};
  }

  static json::array listOf(const std::vector<std::string_view>& texts) {
    json::array list;
    for (const std::string_view text : texts) list.emplace_back(json::string_view(text));
    return list;
  }

  static json::object orNull(json::object schema, bool mayBeNull) {
    if (!mayBeNull) return schema;
    if (auto* type = schema.if_contains("type")) {
      *type = json::array{*type, "null"};
      return schema;
    }
    if (auto* cases = schema.if_contains("enum")) {
      cases->as_array().emplace_back(nullptr);
      return schema;
    }
    return {{"anyOf", json::array{std::move(schema), {{"type", "null"}}}}};
  }

  json::object definition(const JsonType& type, std::string_view name) {
    json::object properties;
    json::array required;
    for (const JsonField& field : type.fields) {
      json::object property;
      const auto description = descriptionOf(name, field.key);
      if (!description.empty()) property["description"] = description;
      if (field.type) {
        for (auto& [key, part] : orNull(value(field.type(), field.key), field.mayBeNull)) property[key] = part;
      }
      properties[field.key] = std::move(property);
      if (!field.mayBeNull) required.emplace_back(field.key);
    }
    json::object schema{{"type", "object"}, {"properties", std::move(properties)}};
    if (!required.empty()) schema["required"] = std::move(required);
    return schema;
  }

  std::map<const JsonType*, std::string> names_;
  json::object definitions_;
};

}  // namespace

json::object configurationSchema() {
  json::object schema{{"$schema", "https://json-schema.org/draft/2020-12/schema"},
                      {"$id", "urn:quillon:consent:configuration"},
                      {"title", "Consent configuration"}};
  for (auto& [key, part] : Writer().schema()) schema[key] = part;
  return schema;
}

}  // namespace quillon::tools
