#include "tools/document/Syntax.h"

#include <boost/json/basic_parser_impl.hpp>
#include <limits>
#include <vector>

#include "core/Json/RecordBuilder.h"

namespace quillon::tools {
namespace {

// Tracks the parser's path. Duplicate keys are not a syntax error.
struct Place {
  static constexpr std::size_t max_array_size = std::numeric_limits<std::size_t>::max();
  static constexpr std::size_t max_object_size = max_array_size;
  static constexpr std::size_t max_string_size = max_array_size;
  static constexpr std::size_t max_key_size = max_array_size;

  using Error = boost::json::error_code;
  using Text = boost::json::string_view;

  bool on_document_begin(Error&) { return true; }
  bool on_document_end(Error&) { return true; }
  bool on_object_begin(Error&) { return open(std::string()); }
  bool on_object_end(std::size_t, Error&) { return close(); }
  bool on_array_begin(Error&) { return open(std::size_t{0}); }
  bool on_array_end(std::size_t, Error&) { return close(); }
  bool on_key_part(Text piece, std::size_t, Error&) {
    pieces += piece;
    return true;
  }
  bool on_key(Text piece, std::size_t, Error&) {
    steps.back() = std::exchange(pieces, {}) + std::string(piece);
    return true;
  }
  bool on_string_part(Text, std::size_t, Error&) { return true; }
  bool on_string(Text, std::size_t, Error&) { return next(); }
  bool on_number_part(Text, Error&) { return true; }
  bool on_int64(std::int64_t, Text, Error&) { return next(); }
  bool on_uint64(std::uint64_t, Text, Error&) { return next(); }
  bool on_double(double, Text, Error&) { return next(); }
  bool on_bool(bool, Error&) { return next(); }
  bool on_null(Error&) { return next(); }
  bool on_comment_part(Text, Error&) { return true; }
  bool on_comment(Text, Error&) { return true; }

  bool open(DocumentPath::Step step) {
    steps.push_back(std::move(step));
    return true;
  }
  bool close() {
    steps.pop_back();
    return next();
  }
  // Called at the end of each value.
  bool next() {
    if (!steps.empty()) {
      if (auto* index = std::get_if<std::size_t>(&steps.back())) ++*index;
    }
    return true;
  }

  std::vector<DocumentPath::Step> steps;
  std::string pieces;
};

}  // namespace

std::optional<SyntaxError> syntaxError(std::string_view text) {
  if (text.size() > quillon::json::kLargestDocument) return SyntaxError{{}, 0, "larger than 32 MiB"};
  boost::json::parse_options options;
  options.max_depth = quillon::json::kDeepestNesting;
  boost::json::basic_parser<Place> parser(options);
  boost::json::error_code error;
  const std::size_t consumed = parser.write_some(false, text.data(), text.size(), error);
  if (!error && consumed < text.size()) error = boost::json::error::extra_data;
  if (!error) return std::nullopt;
  auto steps = std::move(parser.handler().steps);
  // The error is before the object's next key.
  if (!steps.empty() && steps.back() == DocumentPath::Step(std::string())) steps.pop_back();
  std::string what = error == boost::json::error::too_deep ? "nested deeper than 64 levels" : error.message();
  return SyntaxError{DocumentPath(std::move(steps)), consumed, std::move(what)};
}

}  // namespace quillon::tools
