// Changes to a document that leave everything else as somebody wrote it: order, indentation and spelling.
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

  // Sets what is at a path: a new value takes the place of the old one, a new member is appended to its object, and
  // missing objects on the way are made. The index behind the last element of an array appends one. An equal value
  // changes nothing. False when the path leads through something that is no object, or to another missing element.
  bool set(const DocumentPath& path, const boost::json::value& value);

  [[nodiscard]] bool isEmpty() const { return replaced_.empty() && added_.empty() && appended_.empty(); }

  // The changed document.
  [[nodiscard]] std::string text() const;

 private:
  // Text in place of what is between two offsets.
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
  std::map<const Value*, boost::json::object> added_;    // by the object that gets them
  std::map<const Value*, boost::json::array> appended_;  // by the array
};

// The document without the member or element at a path; nullopt when there is none, or the path is the root's.
[[nodiscard]] std::optional<std::string> without(const Document& document, const DocumentPath& path);

}  // namespace quillon::tools
