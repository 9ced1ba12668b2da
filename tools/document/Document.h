// A JSON document with the position of each value, which decode()'s records do not keep.
#pragma once

#include <cstddef>
#include <cstdint>
#include <expected>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/document/DocumentPath.h"

namespace quillon::tools {

// Why a text is not a document; decode() rejects it for the same reason.
struct SyntaxError {
  DocumentPath path;
  std::size_t offset;  // bytes from the start
  std::string text;
};

// A value and its position, in bytes from the start of the document.
struct Value {
  enum class Kind : std::uint8_t { null, boolean, number, text, array, object };

  Kind kind = Kind::null;
  std::uint32_t begin = 0;
  std::uint32_t end = 0;  // one past the last byte
  std::uint32_t keyBegin = 0;
  std::uint32_t keyEnd = 0;  // including the quotes; 0 if the value is not a member of an object
  std::vector<Value> children = {};
};

// A document that is valid JSON. Immutable.
class Document {
 public:
  // Accepts up to 32 MiB and 64 levels, as decode() does, and up to two million values, to bound memory.
  [[nodiscard]] static std::expected<Document, SyntaxError> parse(std::string text);

  [[nodiscard]] const std::string& text() const { return text_; }
  [[nodiscard]] const Value& root() const { return root_; }

  // The value's text in the document.
  [[nodiscard]] std::string_view source(const Value& value) const;
  // The unescaped key of an object's member; the unescaped content of a string.
  [[nodiscard]] std::string key(const Value& member) const;
  [[nodiscard]] std::string content(const Value& text) const;

  // Null if missing.
  [[nodiscard]] const Value* find(const DocumentPath& path) const;
  // The value, or the innermost existing one on its path.
  [[nodiscard]] const Value& nearest(const DocumentPath& path) const;

 private:
  Document(std::string text, Value root) : text_(std::move(text)), root_(std::move(root)) {}

  const Value* child(const Value& parent, const DocumentPath::Step& step) const;

  std::string text_;
  Value root_;
};

}  // namespace quillon::tools
