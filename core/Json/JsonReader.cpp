#include <boost/json/basic_parser_impl.hpp>
#include <limits>

#include "core/Json/Codec.h"
#include "core/Json/RecordBuilder.h"

namespace quillon {
namespace json {
namespace {

// The parser's event handler; turns rejections into parser error codes.
struct Events {
  static constexpr std::size_t max_array_size = std::numeric_limits<std::size_t>::max();
  static constexpr std::size_t max_object_size = max_array_size;
  static constexpr std::size_t max_string_size = max_array_size;
  static constexpr std::size_t max_key_size = max_array_size;

  using Error = boost::json::error_code;
  using Text = boost::json::string_view;

  static bool pass(bool accepted, Error& error) {
    if (!accepted) error = boost::json::error::input_error;
    return accepted;
  }
  static std::string_view view(Text text) { return {text.data(), text.size()}; }

  bool on_document_begin(Error&) { return true; }
  bool on_document_end(Error&) { return true; }
  bool on_object_begin(Error& error) { return pass(builder.beginObject(), error); }
  bool on_object_end(std::size_t, Error& error) { return pass(builder.endObject(), error); }
  bool on_array_begin(Error& error) { return pass(builder.beginArray(), error); }
  bool on_array_end(std::size_t, Error& error) { return pass(builder.endArray(), error); }
  bool on_key_part(Text piece, std::size_t, Error& error) { return pass(builder.part(view(piece)), error); }
  bool on_key(Text piece, std::size_t size, Error& error) { return pass(builder.key(view(piece), size), error); }
  bool on_string_part(Text piece, std::size_t, Error& error) { return pass(builder.part(view(piece)), error); }
  bool on_string(Text piece, std::size_t size, Error& error) { return pass(builder.text(view(piece), size), error); }
  bool on_number_part(Text, Error&) { return true; }  // only at the end of a truncated document
  bool on_int64(std::int64_t value, Text, Error& error) { return pass(builder.integer(value), error); }
  bool on_uint64(std::uint64_t, Text number, Error& error) { return pass(builder.real(0, view(number)), error); }
  bool on_double(double value, Text number, Error& error) { return pass(builder.real(value, view(number)), error); }
  bool on_bool(bool value, Error& error) { return pass(builder.boolean(value), error); }
  bool on_null(Error& error) { return pass(builder.null(), error); }
  bool on_comment_part(Text, Error&) { return true; }
  bool on_comment(Text, Error&) { return true; }

  RecordBuilder& builder;
};

}  // namespace
}  // namespace json

std::optional<std::string> readJson(std::string_view document, const JsonType& type, void* record) {
  if (document.size() > json::kLargestDocument) return "document: larger than 32 MiB";

  json::RecordBuilder builder(document, type, record);
  boost::json::parse_options options;
  options.max_depth = json::kDeepestNesting;
  boost::json::basic_parser<json::Events> parser(options, builder);
  boost::json::error_code error;
  const std::size_t consumed = parser.write_some(false, document.data(), document.size(), error);

  if (!builder.error().empty()) return builder.error();
  if (!error && consumed < document.size()) error = boost::json::error::extra_data;
  if (!error) return std::nullopt;
  return builder.path() + ": " + error.message() + " at byte " + std::to_string(consumed);
}

}  // namespace quillon
