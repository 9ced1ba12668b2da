// A JSON document together with the place of each of its values, which the records that decode() makes do not keep.
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

// What keeps a text from being a document. decode() refuses it for the same reason.
struct SyntaxError {
  DocumentPath path;
  std::size_t offset;  // bytes from the start
  std::string text;
};

// A value and its place in the document: bytes from its start.
struct Value {
  enum class Kind : std::uint8_t { null, boolean, number, text, array, object };

  Kind kind = Kind::null;
  std::uint32_t begin = 0;
  std::uint32_t end = 0;  // one past the last byte
  std::uint32_t keyBegin = 0;
  std::uint32_t keyEnd = 0;  // with its quotes; 0 when the value is no member of an object
  std::vector<Value> children = {};
};

// A document that is valid JSON. Immutable.
class Document {
 public:
  // Documents of up to 32 MiB, 64 levels and two million values: those that decode() takes, and that fit into memory
  // with their places.
  [[nodiscard]] static std::expected<Document, SyntaxError> parse(std::string text);

  [[nodiscard]] const std::string& text() const { return text_; }
  [[nodiscard]] const Value& root() const { return root_; }

  // The value as the document spells it.
  [[nodiscard]] std::string_view source(const Value& value) const;
  // The key of an object's member, and the content of a text.
  [[nodiscard]] std::string key(const Value& member) const;
  [[nodiscard]] std::string content(const Value& text) const;

  // Null when there is none.
  [[nodiscard]] const Value* find(const DocumentPath& path) const;
  // The value, else the innermost one that would hold it.
  [[nodiscard]] const Value& nearest(const DocumentPath& path) const;

 private:
  Document(std::string text, Value root) : text_(std::move(text)), root_(std::move(root)) {}

  const Value* child(const Value& parent, const DocumentPath::Step& step) const;

  std::string text_;
  Value root_;
};

}  // namespace quillon::tools
