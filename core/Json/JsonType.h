// What the JSON reader and writer need to know of a C++ type, made from the type and, for a record, from its table of
// fields. Reader and writer work on these descriptions, so that they exist once and not once per record.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>

#include "core/Json/Codec.h"
#include "core/Json/JsonWriter.h"
#include "core/Json/Record.h"
#include "quillon/RawValue.h"

namespace quillon {

/// A field of a record in a document.
struct JsonField {
  std::string_view key;
  const JsonType& (*type)();
  bool mayBeNull;
  /// The address for the value in @p record; makes an optional member present. Null for a constant.
  void* (*open)(void* record);
};

struct JsonType {
  enum class Kind : std::uint8_t { boolean, integer, text, symbol, array, map, record };

  Kind kind;
  /// Memory of one value, without what it allocates.
  std::size_t size;
  void (*write)(std::string& json, const void* value);

  /// symbol: sets the value that @p text stands for; false when it stands for none.
  bool (*assign)(void* value, std::string_view text) = nullptr;

  /// array, map: what it holds.
  const JsonType& (*element)() = nullptr;
  /// array: the address of a new last element.
  void* (*append)(void* array) = nullptr;
  /// map: the address of the element of a new key; null when the map has the key.
  void* (*insert)(void* map, std::string_view key) = nullptr;
  /// map whose elements may be null: makes an element present and returns the address of its value; null otherwise.
  void* (*openElement)(void* element) = nullptr;

  /// record: in declaration order, at most 64, with one bit for each that must be there.
  std::span<const JsonField> fields = {};
  std::uint64_t required = 0;
};

namespace json {

/// A text of which only the presence matters: the value of a constant.
struct ConstantText {};

template <class T>
void* makePresent(std::optional<T>& value) {
  if constexpr (std::is_default_constructible_v<T>) {
    return &value.emplace();
  } else {
    return &value.emplace(std::string());
  }
}

template <class T>
struct Present {
  using Type = T;
};
template <class T>
struct Present<std::optional<T>> {
  using Type = T;
};

template <class T>
[[nodiscard]] const JsonType& describe();

template <class R>
void writeFields(std::string& json, const R& record);

template <class T>
void write(std::string& json, const T& value) {
  if constexpr (std::is_same_v<T, bool>) {
    json += value ? "true" : "false";
  } else if constexpr (std::is_same_v<T, std::int64_t>) {
    writeInteger(json, value);
  } else if constexpr (std::is_same_v<T, std::string>) {
    writeText(json, value);
  } else if constexpr (std::is_same_v<T, VantariKey>) {
    writeText(json, value.rawValue());
  } else if constexpr (std::is_enum_v<T>) {
    writeText(json, rawValue(value));
  } else if constexpr (isOptional<T>) {
    if (value) {
      write(json, *value);
    } else {
      json += "null";
    }
  } else if constexpr (isVector<T>) {
    json += '[';
    for (const auto& element : value) {
      separate(json, '[');
      write(json, element);
    }
    json += ']';
  } else if constexpr (isMap<T>) {
    json += '{';
    for (const auto& [key, element] : value) {
      separate(json, '{');
      writeText(json, key);
      json += ':';
      write(json, element);
    }
    json += '}';
  } else {
    jsonType<T>().write(json, &value);
  }
}

template <class R, class F>
void writeField(std::string& json, const R& record, const F& field) {
  if constexpr (std::is_same_v<F, Constant>) {
    writeKey(json, field.key);
    writeText(json, field.text);
  } else if constexpr (F::inDocument) {
    const auto& value = field.in(record);
    if constexpr (isOptional<typename F::Type>) {
      if (!value) return;
      writeKey(json, field.key);
      write(json, *value);
    } else {
      writeKey(json, field.key);
      write(json, value);
    }
  }
}

template <class R>
void writeFields(std::string& json, const R& record) {
  json += '{';
  std::apply([&](const auto&... field) { (writeField(json, record, field), ...); }, fields<R>);
  json += '}';
}

template <class T>
[[nodiscard]] constexpr JsonType scalar(JsonType::Kind kind) {
  return {.kind = kind, .size = sizeof(T), .write = [](std::string& json, const void* value) {
            write(json, *static_cast<const T*>(value));
          }};
}

/// The description of a type that is not a record.
template <class T>
[[nodiscard]] constexpr JsonType describeValue() {
  using Kind = JsonType::Kind;
  if constexpr (std::is_same_v<T, bool>) {
    return scalar<T>(Kind::boolean);
  } else if constexpr (std::is_same_v<T, std::int64_t>) {
    return scalar<T>(Kind::integer);
  } else if constexpr (std::is_same_v<T, std::string>) {
    return scalar<T>(Kind::text);
  } else if constexpr (std::is_same_v<T, ConstantText>) {
    return {.kind = Kind::symbol, .size = 0, .write = nullptr, .assign = [](void*, std::string_view) { return true; }};
  } else if constexpr (std::is_same_v<T, VantariKey>) {
    JsonType type = scalar<T>(Kind::symbol);
    type.assign = [](void* value, std::string_view text) {
      *static_cast<T*>(value) = T(std::string(text));
      return true;
    };
    return type;
  } else if constexpr (std::is_enum_v<T>) {
    JsonType type = scalar<T>(Kind::symbol);
    type.assign = [](void* value, std::string_view text) {
      const std::optional<T> known = fromRawValue<T>(text);
      if (known) *static_cast<T*>(value) = *known;
      return known.has_value();
    };
    return type;
  } else if constexpr (isVector<T>) {
    JsonType type = scalar<T>(Kind::array);
    type.element = &describe<typename T::value_type>;
    type.append = [](void* array) -> void* { return &static_cast<T*>(array)->emplace_back(); };
    return type;
  } else {
    static_assert(isMap<T>);
    using Element = typename T::mapped_type;
    JsonType type = scalar<T>(Kind::map);
    type.element = &describe<typename Present<Element>::Type>;
    type.insert = [](void* map, std::string_view key) -> void* {
      auto& entries = *static_cast<T*>(map);
      const std::size_t before = entries.size();
      // Keys mostly come in order, and then the end is the right place.
      const auto entry = entries.try_emplace(entries.end(), std::string(key));
      return entries.size() == before ? nullptr : &entry->second;
    };
    if constexpr (isOptional<Element>) {
      type.openElement = [](void* element) { return makePresent(*static_cast<Element*>(element)); };
    }
    return type;
  }
}

template <class T>
inline constexpr bool isRecord =
    std::is_class_v<T> && !std::is_same_v<T, std::string> && !std::is_same_v<T, VantariKey> &&
    !std::is_same_v<T, ConstantText> && !isVector<T> && !isMap<T>;

template <class T>
const JsonType& describe() {
  if constexpr (isRecord<T>) {
    return jsonType<T>();
  } else {
    static constexpr JsonType type = describeValue<T>();
    return type;
  }
}

template <class F>
[[nodiscard]] constexpr JsonField describeField(const F& field) {
  if constexpr (std::is_same_v<F, Constant>) {
    return {field.key, &describe<ConstantText>, false, [](void*) -> void* { return nullptr; }};
  } else {
    using Type = typename F::Type;
    return {field.key, &describe<typename Present<Type>::Type>, isOptional<Type>, [](void* record) -> void* {
              auto& member = F::in(*static_cast<typename F::Record*>(record));
              if constexpr (isOptional<Type>) {
                return makePresent(member);
              } else {
                return &member;
              }
            }};
  }
}

/// The fields of R that stand in documents.
template <class R>
[[nodiscard]] constexpr auto describeFields() {
  constexpr std::size_t count =
      std::apply([](auto... field) { return (std::size_t{decltype(field)::inDocument} + ...); }, fields<R>);
  static_assert(count > 0 && count <= 64, "a record has a table of at most 64 fields");
  std::array<JsonField, count> described{};
  std::size_t next = 0;
  const auto add = [&](const auto& field) {
    if constexpr (std::remove_cvref_t<decltype(field)>::inDocument) described[next++] = describeField(field);
  };
  std::apply([&](const auto&... field) { (add(field), ...); }, fields<R>);
  return described;
}

}  // namespace json

template <class R>
const JsonType& jsonType() {
  static constexpr auto described = json::describeFields<R>();
  static constexpr JsonType type = [] {
    JsonType record{
        .kind = JsonType::Kind::record, .size = sizeof(R), .write = [](std::string& text, const void* value) {
          json::writeFields(text, *static_cast<const R*>(value));
        }};
    record.fields = described;
    for (std::size_t i = 0; i < described.size(); ++i) {
      if (!described[i].mayBeNull) record.required |= std::uint64_t{1} << i;
    }
    return record;
  }();
  return type;
}

}  // namespace quillon
