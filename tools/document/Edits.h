// Edits a document and preserves everything else as written: order, indentation, spelling.
#pragma once

#include <boost/json/array.hpp>
#include <boost/json/object.hpp>
#include <cstddef>
#include <map>
#include <optional>
#include <string>

#include "tools/JsonLayout.h"
#include "tools/document/Document.h"

namespace quillon::tools {

// Collects changes to one document, which must outlive it.
class Edits {
 public:
  explicit Edits(const Document& document) : document_(document) {}

  // Sets the value at a path: replaces an existing one, or appends a new member to its object; creates missing objects
  // on the way. The index after an array's last element appends one. Setting an equal value is a no-op. False if the
  // path leads through a value that is not an object, or to another missing element.
  bool set(const DocumentPath& path, const boost::json::value& value);

  [[nodiscard]] bool isEmpty() const { return replaced_.empty() && added_.empty() && appended_.empty(); }

  // The changed document.
  [[nodiscard]] std::string text() const;

 private:
  // The replacement of the text between two offsets.
  struct Splice {
    std::size_t begin;
    std::size_t end;
    std::string text;
  };

  Splice addition(const Value& parent, const boost::json::value& children) const;
  std::string indentationAt(std::size_t offset) const;
  JsonLayout layout() const;

  const Document& document_;
  std::map<const Value*, boost::json::value> replaced_;
  std::map<const Value*, boost::json::object> added_;    // by the object they are added to
  std::map<const Value*, boost::json::array> appended_;  // by the array they are added to
};

// The document without the value at a path; nullopt if the value is missing or the root.
[[nodiscard]] std::optional<std::string> without(const Document& document, const DocumentPath& path);

}  // namespace quillon::tools
