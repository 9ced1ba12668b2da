#include "bench/OtherLibraries.h"

#include <rapidjson/document.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>
#include <simdjson.h>

#include <cstdint>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "bench/RecordKeys.h"
#include "core/Json/Record.h"

namespace quillon::bench {
namespace {

// simdjson's On-Demand interface: converts values while parsing.
struct Simdjson {
  using Value = simdjson::ondemand::value;
  using Object = simdjson::ondemand::object;

  static bool isNull(Value& value) { return value.is_null(); }
  static bool boolean(Value& value) { return value.get_bool(); }
  static std::int64_t integer(Value& value) { return value.get_int64(); }
  static std::string_view text(Value& value) { return value.get_string(); }
  static Object object(Value& value) { return value.get_object(); }
  template <class F>
  static void member(Object& object, const char* key, F use) {
    Value value;
    if (object.find_field(key).get(value) == simdjson::SUCCESS) use(value);
  }
  template <class F>
  static void forEachMember(Value& value, F use) {
    for (auto field : value.get_object()) {
      const std::string_view key = field.unescaped_key();
      Value element = field.value();
      use(key, element);
    }
  }
  template <class F>
  static void forEachElement(Value& value, F use) {
    for (auto found : value.get_array()) {
      Value element = found.value();
      use(element);
    }
  }
};

// RapidJSON's DOM.
struct RapidJson {
  using Value = const rapidjson::Value;
  using Object = const rapidjson::Value&;

  static bool isNull(Value& value) { return value.IsNull(); }
  static bool boolean(Value& value) { return value.GetBool(); }
  static std::int64_t integer(Value& value) { return value.GetInt64(); }
  static std::string_view text(Value& value) { return {value.GetString(), value.GetStringLength()}; }
  static Object object(Value& value) { return value; }
  template <class F>
  static void member(Object& object, const char* key, F use) {
    const auto found = object.FindMember(key);
    if (found != object.MemberEnd()) use(found->value);
  }
  template <class F>
  static void forEachMember(Value& value, F use) {
    for (const auto& [key, element] : value.GetObject()) use(text(key), element);
  }
  template <class F>
  static void forEachElement(Value& value, F use) {
    for (const auto& element : value.GetArray()) use(element);
  }
};

// nlohmann's DOM.
struct Nlohmann {
  using Value = const nlohmann::json;
  using Object = const nlohmann::json&;

  static bool isNull(Value& value) { return value.is_null(); }
  static bool boolean(Value& value) { return value.get<bool>(); }
  static std::int64_t integer(Value& value) { return value.get<std::int64_t>(); }
  static std::string_view text(Value& value) { return value.get_ref<const std::string&>(); }
  static Object object(Value& value) { return value; }
  template <class F>
  static void member(Object& object, const char* key, F use) {
    const auto found = object.find(key);
    if (found != object.end()) use(*found);
  }
  template <class F>
  static void forEachMember(Value& value, F use) {
    for (const auto& [key, element] : value.items()) use(std::string_view(key), element);
  }
  template <class F>
  static void forEachElement(Value& value, F use) {
    for (const auto& element : value) use(element);
  }
};

template <class Library, class T>
void convert(typename Library::Value& value, T& to);

template <class Library>
struct ObjectReader {
  typename Library::Object object;

  template <class T>
  void field(const char* key, T& member) {
    Library::member(object, key, [&](auto& value) { convert<Library>(value, member); });
  }
};

template <class Library, class T>
void convert(typename Library::Value& value, T& to) {
  if constexpr (isOptional<T>) {
    if (Library::isNull(value)) return;
    if constexpr (std::is_same_v<T, std::optional<VantariKey>>) {
      to.emplace(std::string(Library::text(value)));
    } else {
      convert<Library>(value, to.emplace());
    }
  } else if constexpr (std::is_same_v<T, bool>) {
    to = Library::boolean(value);
  } else if constexpr (std::is_same_v<T, std::int64_t>) {
    to = Library::integer(value);
  } else if constexpr (std::is_same_v<T, std::string>) {
    to = Library::text(value);
  } else if constexpr (std::is_enum_v<T>) {
    to = fromRawValue<T>(Library::text(value)).value();
  } else if constexpr (isVector<T>) {
    Library::forEachElement(value, [&](auto& element) { convert<Library>(element, to.emplace_back()); });
  } else if constexpr (isMap<T>) {
    Library::forEachMember(value, [&](std::string_view key, auto& element) {
      convert<Library>(element, to.try_emplace(to.end(), std::string(key))->second);
    });
  } else {
    ObjectReader<Library> reader{Library::object(value)};
    visitFields(reader, to);
  }
}

}  // namespace

MainConfiguration decodeWithSimdjson(std::string_view json) {
  static simdjson::ondemand::parser parser;
  MainConfiguration configuration;
  simdjson::ondemand::document document =
      parser.iterate(json.data(), json.size(), json.size() + simdjson::SIMDJSON_PADDING);
  ObjectReader<Simdjson> reader{document.get_object()};
  visitFields(reader, configuration);
  return configuration;
}

MainConfiguration decodeWithRapidJson(std::string_view json) {
  MainConfiguration configuration;
  rapidjson::Document document;
  document.Parse<rapidjson::kParseValidateEncodingFlag>(json.data(), json.size());
  if (document.HasParseError()) throw std::runtime_error("not a document");
  convert<RapidJson>(document, configuration);
  return configuration;
}

MainConfiguration decodeWithNlohmann(std::string_view json) {
  MainConfiguration configuration;
  const auto document = nlohmann::json::parse(json);
  convert<Nlohmann>(document, configuration);
  return configuration;
}

namespace {

// RapidJSON's Writer as the target of a structure's fields.
struct RapidJsonWriter {
  using Writer = rapidjson::Writer<rapidjson::StringBuffer>;
  Writer& writer;

  template <class T>
  void field(const char* key, const T& member) {
    if constexpr (isOptional<T>) {
      if (member) field(key, *member);
    } else {
      writer.Key(key);
      value(member);
    }
  }

  void text(std::string_view text) { writer.String(text.data(), static_cast<rapidjson::SizeType>(text.size())); }

  template <class T>
  void value(const T& from) {
    if constexpr (isOptional<T>) {
      if (from) {
        value(*from);
      } else {
        writer.Null();
      }
    } else if constexpr (std::is_same_v<T, bool>) {
      writer.Bool(from);
    } else if constexpr (std::is_same_v<T, std::int64_t>) {
      writer.Int64(from);
    } else if constexpr (std::is_same_v<T, std::string>) {
      text(from);
    } else if constexpr (std::is_same_v<T, VantariKey>) {
      text(from.rawValue());
    } else if constexpr (std::is_enum_v<T>) {
      text(rawValue(from));
    } else if constexpr (isVector<T>) {
      writer.StartArray();
      for (const auto& element : from) value(element);
      writer.EndArray();
    } else if constexpr (isMap<T>) {
      writer.StartObject();
      for (const auto& [key, element] : from) {
        text(key);
        value(element);
      }
      writer.EndObject();
    } else {
      writer.StartObject();
      visitFields(*this, from);
      writer.EndObject();
    }
  }
};

}  // namespace

std::string encodeWithRapidJson(const MainConfiguration& configuration) {
  rapidjson::StringBuffer buffer;
  rapidjson::Writer<rapidjson::StringBuffer> writer(buffer);
  RapidJsonWriter{writer}.value(configuration);
  return {buffer.GetString(), buffer.GetSize()};
}

}  // namespace quillon::bench
