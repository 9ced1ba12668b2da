// Builds a structure from JSON parser events, in one pass and without a tree.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/Json/JsonType.h"

namespace quillon::json {

/// Limits of a document.
inline constexpr std::size_t kLargestDocument = std::size_t{32} << 20;
inline constexpr std::size_t kDeepestNesting = 64;
/// Memory limit of a decoded document: a short text must not expand into many large structures.
inline constexpr std::size_t kLargestRecord = std::size_t{256} << 20;

/// What is wrong with a value of another kind, such as "expected an integer".
[[nodiscard]] std::string_view expectation(JsonType::Kind kind);

/// Builds one structure. Each event returns whether to continue; after a rejection error() gives the reason.
class RecordBuilder {
 public:
  /// Fills @p record of type @p type. The parser must read @p document from the same memory.
  RecordBuilder(std::string_view document, const JsonType& type, void* record);

  bool beginObject();
  bool beginArray();
  bool endObject();
  bool endArray();
  /// A piece of a key or text that arrives in several pieces.
  bool part(std::string_view piece);
  /// The last piece of a key or text with @p size bytes in total.
  bool key(std::string_view piece, std::size_t size);
  bool text(std::string_view piece, std::size_t size);
  bool integer(std::int64_t value);
  /// A number with a fraction or exponent, or beyond 64-bit signed integers; @p number is its text.
  bool real(double approximation, std::string_view number);
  bool boolean(bool value);
  bool null();

  /// The error; empty if there is none.
  [[nodiscard]] const std::string& error() const noexcept { return error_; }
  /// The current path, such as "purposes[3].sdks[0].sdk_id", or "document".
  [[nodiscard]] std::string path() const;

 private:
  /// An open object or array.
  struct Level {
    const JsonType* type = nullptr;     ///< null: skipped
    const JsonType* element = nullptr;  ///< of an array or map
    void* value = nullptr;
    bool isArray = false;
    std::size_t count = 0;         ///< array: elements begun
    std::size_t elementBytes = 0;  ///< array: memory of one more element
    std::size_t next = 0;          ///< record: the field expected next
    std::uint64_t seen = 0;        ///< record: a bit for each field seen
    std::size_t firstSkip = 0;     ///< where its keys begin in skippedKeys_
    std::string_view key;          ///< object: the latest key
    std::string ownKey;            ///< holds that key when the document spells it with escapes
  };

  /// The target of the next value.
  struct Target {
    const JsonType* type = nullptr;  ///< null: it is skipped
    void* place = nullptr;
    void* (*open)(void* place) = nullptr;  ///< gives the value's address; null when place is that address
    bool mayBeNull = false;
  };

  bool refuse(const std::string& what);
  bool refuseType();
  bool take(std::size_t bytes);
  bool aim();
  bool aimAtField(Level& level, std::string_view key);
  bool aimAtEntry(Level& level, std::string_view key);
  bool skipKey(std::string_view key);
  void* address();
  bool assign(std::string_view text);
  bool begin(bool isArray, const JsonType* type);
  std::string_view whole(std::string_view piece, std::size_t size);

  std::string_view document_;
  std::vector<Level> levels_;  // allocated in full, made when first used; the first is the document's
  Level* top_;                 // the innermost
  Target target_;
  std::string pieces_;
  std::vector<std::uint64_t> skippedKeys_;  // hashes, to detect duplicates among skipped keys
  std::size_t memory_ = 0;
  std::string error_;
};

}  // namespace quillon::json
