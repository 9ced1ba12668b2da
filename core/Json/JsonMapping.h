// Builds the JSON mapping of a C++ type and, for a structure, from its field table.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>

#include "core/Json/JsonType.h"
#include "core/Json/Record.h"
#include "quillon/RawValue.h"

namespace quillon {
namespace json {

/// A text of which only the presence is checked: the value of a constant.
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

template <class T>
[[nodiscard]] const void* presentOrNull(const T& value) {
  if constexpr (isOptional<T>) {
    return value ? &*value : nullptr;
  } else {
    return &value;
  }
}

/// The mapping of a type that is not a structure.
template <class T>
[[nodiscard]] constexpr JsonType describeValue() {
  using Kind = JsonType::Kind;
  if constexpr (std::is_same_v<T, bool>) {
    return {.kind = Kind::boolean, .size = sizeof(T)};
  } else if constexpr (std::is_same_v<T, std::int64_t>) {
    return {.kind = Kind::integer, .size = sizeof(T)};
  } else if constexpr (std::is_same_v<T, std::string>) {
    return {.kind = Kind::text, .size = sizeof(T)};
  } else if constexpr (std::is_same_v<T, ConstantText>) {
    return {.kind = Kind::symbol, .isOpen = true, .size = 0, .assign = [](void*, std::string_view) { return true; }};
  } else if constexpr (std::is_same_v<T, VantariKey>) {
    JsonType type{.kind = Kind::symbol, .isOpen = true, .size = sizeof(T)};
    type.assign = [](void* value, std::string_view text) {
      *static_cast<T*>(value) = T(std::string(text));
      return true;
    };
    type.text = [](const void* value) { return std::string_view(static_cast<const T*>(value)->rawValue()); };
    return type;
  } else if constexpr (std::is_enum_v<T>) {
    JsonType type{.kind = Kind::symbol, .size = sizeof(T)};
    type.assign = [](void* value, std::string_view text) {
      const std::optional<T> known = fromRawValue<T>(text);
      if (known) *static_cast<T*>(value) = *known;
      return known.has_value();
    };
    type.text = [](const void* value) { return std::string_view(rawValue(*static_cast<const T*>(value))); };
    return type;
  } else if constexpr (isVector<T>) {
    JsonType type{.kind = Kind::array, .size = sizeof(T)};
    type.element = &describe<typename T::value_type>;
    type.append = [](void* array) -> void* { return &static_cast<T*>(array)->emplace_back(); };
    type.elements = [](const void* array) { return std::as_bytes(std::span(*static_cast<const T*>(array))); };
    return type;
  } else {
    static_assert(isMap<T>);
    using Element = typename T::mapped_type;
    JsonType type{.kind = Kind::map, .size = sizeof(T)};
    type.element = &describe<typename Present<Element>::Type>;
    type.insert = [](void* map, std::string_view key) -> void* {
      auto& entries = *static_cast<T*>(map);
      const std::size_t before = entries.size();
      // Keys are mostly sorted, so the end is the right hint.
      const auto entry = entries.try_emplace(entries.end(), std::string(key));
      return entries.size() == before ? nullptr : &entry->second;
    };
    type.each = [](const void* map, void (*use)(void*, std::string_view, const void*), void* context) {
      for (const auto& [key, element] : *static_cast<const T*>(map)) use(context, key, presentOrNull(element));
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
    return {.key = field.key,
            .type = &describe<ConstantText>,
            .mayBeNull = false,
            .open = [](void*) -> void* { return nullptr; },
            .constant = field.text};
  } else if constexpr (std::is_same_v<F, Ignored>) {
    return {
        .key = field.key, .type = nullptr, .mayBeNull = true, .open = nullptr, .get = [](const void*) -> const void* {
          return nullptr;
        }};
  } else {
    using Type = typename F::Type;
    return {
        .key = field.key,
        .type = &describe<typename Present<Type>::Type>,
        .mayBeNull = isOptional<Type>,
        .open = [](void* record) -> void* {
          auto& member = F::in(*static_cast<typename F::Record*>(record));
          if constexpr (isOptional<Type>) {
            return makePresent(member);
          } else {
            return &member;
          }
        },
        .get =
            [](const void* record) { return presentOrNull(F::in(*static_cast<const typename F::Record*>(record))); }};
  }
}

/// The fields of R that appear in documents.
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
    JsonType record{.kind = JsonType::Kind::record, .size = sizeof(R)};
    record.fields = described;
    for (std::size_t i = 0; i < described.size(); ++i) {
      if (!described[i].mayBeNull) record.required |= std::uint64_t{1} << i;
    }
    return record;
  }();
  return type;
}

}  // namespace quillon
