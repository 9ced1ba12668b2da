// From the events of a JSON parser to a record, in one pass and without a tree in between.
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
/// What a decoded document may take in memory, so that a short text cannot ask for a great many large records.
inline constexpr std::size_t kLargestRecord = std::size_t{256} << 20;

/// Builds one record. The parser reports what it meets, in the order of the document; each report returns whether to go
/// on. After a refusal error() says why.
class RecordBuilder {
 public:
  /// Fills @p record of type @p type from @p document, which the parser reads from the same place in memory.
  RecordBuilder(std::string_view document, const JsonType& type, void* record);

  bool beginObject();
  bool beginArray();
  bool endObject();
  bool endArray();
  /// Part of a key or text that arrives in several pieces.
  bool part(std::string_view piece);
  /// The last piece of a key or text of @p size bytes in all.
  bool key(std::string_view piece, std::size_t size);
  bool text(std::string_view piece, std::size_t size);
  bool integer(std::int64_t value);
  /// A number with a fraction or an exponent, or too large for a signed integer of 64 bits; @p number is its text.
  bool real(double approximation, std::string_view number);
  bool boolean(bool value);
  bool null();

  /// The refusal; empty while all is well.
  [[nodiscard]] const std::string& error() const noexcept { return error_; }
  /// The place that has been reached, such as "purposes[3].sdks[0].sdk_id", or "document".
  [[nodiscard]] std::string path() const;

 private:
  /// An object or array that has begun and not ended.
  struct Level {
    const JsonType* type = nullptr;     ///< null: skipped
    const JsonType* element = nullptr;  ///< what an array or map holds
    void* value = nullptr;
    bool isArray = false;
    std::size_t count = 0;         ///< array: elements begun
    std::size_t elementBytes = 0;  ///< array: what one more takes
    std::size_t next = 0;          ///< record: the field that probably comes next
    std::uint64_t seen = 0;        ///< record: a bit for each field met
    std::size_t firstSkip = 0;     ///< where its keys begin in skippedKeys_
    std::string_view key;          ///< object: the latest key
    std::string ownKey;            ///< holds that key when the document spells it with escapes
  };

  /// Where the next value goes.
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
  std::vector<Level> levels_;    // full length from the start; the first is that of the document
  Level* top_ = levels_.data();  // the innermost
  Target target_;
  std::string pieces_;
  std::vector<std::uint64_t> skippedKeys_;  // hashes, to find duplicates where keys are not kept
  std::size_t memory_ = 0;
  std::string error_;
};

}  // namespace quillon::json
