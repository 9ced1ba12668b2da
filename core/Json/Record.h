// One field table per structure, from which equality, hashing, decoding and encoding follow. A new field is one new
// line in the table.
#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <vector>

#include "quillon/VantariKey.h"

namespace quillon {

template <class T>
inline constexpr bool isOptional = false;
template <class T>
inline constexpr bool isOptional<std::optional<T>> = true;

template <class T>
inline constexpr bool isVector = false;
template <class T>
inline constexpr bool isVector<std::vector<T>> = true;

template <class T>
inline constexpr bool isMap = false;
template <class K, class T, class C>
inline constexpr bool isMap<std::map<K, T, C>> = true;

template <class R, class T>
R recordOf(T R::*);
template <class R, class T>
T typeOf(T R::*);

/// A field with its JSON key. A std::optional member may be absent or null in a document; others are required.
template <auto Member>
struct Field {
  using Record = decltype(recordOf(Member));
  using Type = decltype(typeOf(Member));
  static constexpr bool inDocument = true;

  std::string_view key;

  [[nodiscard]] static constexpr Type& in(Record& record) noexcept { return record.*Member; }
  [[nodiscard]] static constexpr const Type& in(const Record& record) noexcept { return record.*Member; }
};

/// A field for equality and hashing only, neither decoded nor encoded.
template <auto Member>
struct NotInDocument : Field<Member> {
  static constexpr bool inDocument = false;
};

/// A fixed text in every document of this kind.
struct Constant {
  static constexpr bool inDocument = true;

  std::string_view key;
  std::string_view text;
};

/// A known field that is skipped.
struct Ignored {
  static constexpr bool inDocument = true;

  std::string_view key;
};

/// The fields of R in declaration order, as a std::tuple of the above; specialised where R's other operations are.
template <class R>
inline constexpr std::tuple<> fields = {};

/// Whether both have the same value in every field; an absent value equals only an absent one.
template <class R>
[[nodiscard]] bool equalFields(const R& left, const R& right) {
  return std::apply([&](auto... field) { return ((field.in(left) == field.in(right)) && ...); }, fields<R>);
}

constexpr void mixHash(std::size_t& hash, std::size_t value) noexcept {
  hash ^= value + 0x9e3779b97f4a7c15U + (hash << 6) + (hash >> 2);
}

template <class T>
[[nodiscard]] std::size_t hashOf(const T& value) {
  std::size_t hash = 0;
  if constexpr (isOptional<T>) {
    mixHash(hash, value.has_value());
    if (value) mixHash(hash, hashOf(*value));
  } else if constexpr (isVector<T>) {
    mixHash(hash, value.size());
    for (const auto& element : value) mixHash(hash, hashOf(element));
  } else if constexpr (isMap<T>) {
    mixHash(hash, value.size());
    for (const auto& [key, element] : value) {
      mixHash(hash, hashOf(key));
      mixHash(hash, hashOf(element));
    }
  } else if constexpr (std::is_same_v<T, VantariKey>) {
    hash = hashOf(value.rawValue());
  } else {
    hash = std::hash<T>{}(value);
  }
  return hash;
}

template <class R>
[[nodiscard]] std::size_t hashFields(const R& record) {
  std::size_t hash = 0;
  std::apply([&](auto... field) { (mixHash(hash, hashOf(field.in(record))), ...); }, fields<R>);
  return hash;
}

}  // namespace quillon
