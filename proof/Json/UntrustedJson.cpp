#include "proof/Json/UntrustedJson.h"

#include <boost/json/basic_parser_impl.hpp>
#include <boost/json/value_stack.hpp>
#include <charconv>

namespace quillon::proof {
namespace {

namespace json = boost::json;

// Builds a value and counts the member names in the text, to detect duplicates.
class Builder {
 public:
  static constexpr std::size_t max_object_size = std::size_t(-1);
  static constexpr std::size_t max_array_size = std::size_t(-1);
  static constexpr std::size_t max_key_size = std::size_t(-1);
  static constexpr std::size_t max_string_size = std::size_t(-1);

  Builder() { stack_.reset(); }
  json::value take() { return stack_.release(); }
  [[nodiscard]] std::size_t keys() const { return keys_; }

  // The parser's handler interface.
  bool on_document_begin(json::error_code&) { return true; }
  bool on_document_end(json::error_code&) { return true; }
  bool on_object_begin(json::error_code&) { return true; }
  bool on_array_begin(json::error_code&) { return true; }
  bool on_object_end(std::size_t count, json::error_code&) {
    stack_.push_object(count);
    return true;
  }
  bool on_array_end(std::size_t count, json::error_code&) {
    stack_.push_array(count);
    return true;
  }
  bool on_key_part(json::string_view part, std::size_t, json::error_code&) { return chars(part); }
  bool on_key(json::string_view part, std::size_t, json::error_code&) {
    ++keys_;
    stack_.push_key(part);
    return true;
  }
  bool on_string_part(json::string_view part, std::size_t, json::error_code&) { return chars(part); }
  bool on_string(json::string_view part, std::size_t, json::error_code&) {
    stack_.push_string(part);
    return true;
  }
  bool on_number_part(json::string_view part, json::error_code&) {
    number_.append(part.data(), part.size());
    return true;
  }
  bool on_int64(std::int64_t number, json::string_view, json::error_code&) {
    number_.clear();
    stack_.push_int64(number);
    return true;
  }
  bool on_uint64(std::uint64_t number, json::string_view, json::error_code&) {
    number_.clear();
    stack_.push_uint64(number);
    return true;
  }
  // The parser's result may be off by one ulp, so the text is parsed again exactly.
  bool on_double(double number, json::string_view part, json::error_code&) {
    number_.append(part.data(), part.size());
    double exact = 0;
    const auto read = std::from_chars(number_.data(), number_.data() + number_.size(), exact);
    stack_.push_double(read.ec == std::errc() ? exact : number);
    number_.clear();
    return true;
  }
  bool on_bool(bool value, json::error_code&) {
    stack_.push_bool(value);
    return true;
  }
  bool on_null(json::error_code&) {
    stack_.push_null();
    return true;
  }
  bool on_comment_part(json::string_view, json::error_code&) { return true; }
  bool on_comment(json::string_view, json::error_code&) { return true; }

 private:
  bool chars(json::string_view part) {
    stack_.push_chars(part);
    return true;
  }

  json::value_stack stack_;
  std::string number_;
  std::size_t keys_ = 0;
};

std::size_t membersIn(const json::value& value) {
  std::size_t count = 0;
  if (value.is_object()) {
    count = value.get_object().size();
    for (const auto& member : value.get_object()) count += membersIn(member.value());
  } else if (value.is_array()) {
    for (const auto& element : value.get_array()) count += membersIn(element);
  }
  return count;
}

}  // namespace

std::expected<json::value, std::string> readUntrustedJson(std::string_view text) {
  if (text.size() > largestProofFile) return std::unexpected("larger than 32 MiB");
  json::parse_options options;
  options.max_depth = deepestProofFile;
  json::basic_parser<Builder> parser(options);
  json::error_code error;
  const auto used = parser.write_some(false, text.data(), text.size(), error);
  const auto at = [](std::size_t position) { return " (byte " + std::to_string(position) + ")"; };
  if (error) return std::unexpected("no JSON: " + error.message() + at(used));
  const auto rest = text.find_first_not_of(" \t\r\n", used);
  if (rest != std::string_view::npos) return std::unexpected("no JSON: something follows it" + at(rest));
  auto value = parser.handler().take();
  if (membersIn(value) != parser.handler().keys()) return std::unexpected("a member stands twice in one object");
  return value;
}

}  // namespace quillon::proof
