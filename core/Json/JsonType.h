// Type-erased JSON mappings. Reader, writer and others that walk the tables, such as a schema generator, are thus
// compiled once and not per structure.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "core/Json/Codec.h"

namespace quillon {

/// A field of a structure in a document.
struct JsonField {
  std::string_view key;
  const JsonType& (*type)();  // null: the value is skipped
  bool mayBeNull;
  /// The address of the value in @p record; makes an optional member present. Null for a constant.
  void* (*open)(void* record);
  /// The value in @p record; null when absent. No function for a constant.
  const void* (*get)(const void* record) = nullptr;
  /// The text of a constant.
  std::string_view constant = {};
};

struct JsonType {
  enum class Kind : std::uint8_t { boolean, integer, text, symbol, array, map, record };

  Kind kind;
  /// symbol: whether any text is a value.
  bool isOpen = false;
  /// Size of one value, without its allocations.
  std::size_t size;

  /// symbol: sets the value for @p text; false when there is none.
  bool (*assign)(void* value, std::string_view text) = nullptr;
  /// symbol: the text of @p value.
  std::string_view (*text)(const void* value) = nullptr;

  /// array, map: the element's mapping.
  const JsonType& (*element)() = nullptr;
  /// array: appends an element and returns its address.
  void* (*append)(void* array) = nullptr;
  /// array: its elements, contiguous in memory.
  std::span<const std::byte> (*elements)(const void* array) = nullptr;
  /// map: inserts a key and returns its element's address; null for a duplicate.
  void* (*insert)(void* map, std::string_view key) = nullptr;
  /// map with nullable elements: makes an element present and returns its value's address; null otherwise.
  void* (*openElement)(void* element) = nullptr;
  /// map: calls @p use for each element in key order, with null for an absent one.
  void (*each)(const void* map, void (*use)(void* context, std::string_view key, const void* element),
               void* context) = nullptr;

  /// record: fields in declaration order, at most 64, with a bit for each required one.
  std::span<const JsonField> fields = {};
  std::uint64_t required = 0;
};

}  // namespace quillon
