#include "core/Json/JsonReader.h"

#include <algorithm>
#include <bit>
#include <boost/json/basic_parser_impl.hpp>
#include <charconv>
#include <cmath>
#include <functional>
#include <limits>

#include "core/Text/Ascii.h"

namespace quillon {
namespace json {
namespace {

using Kind = JsonType::Kind;

// How much of a key or text an error message repeats.
constexpr std::size_t kLongestQuote = 64;
// The hash of a skipped key, in an array that grows by doubling.
constexpr std::size_t kSkippedKeyMemory = 2 * sizeof(std::uint64_t);

std::string_view expectation(Kind kind) {
  switch (kind) {
    case Kind::boolean:
      return "expected a boolean";
    case Kind::integer:
      return "expected an integer";
    case Kind::text:
    case Kind::symbol:
      return "expected a string";
    case Kind::array:
      return "expected an array";
    case Kind::map:
    case Kind::record:
      return "expected an object";
  }
  return {};
}

// Cuts on the border of a character and makes control characters harmless for a log.
void appendQuote(std::string& message, std::string_view text) {
  std::string_view shown = text.substr(0, kLongestQuote);
  if (shown.size() < text.size()) {
    while (!shown.empty() && (static_cast<unsigned char>(text[shown.size()]) & 0xC0) == 0x80) shown.remove_suffix(1);
  }
  for (const char c : shown) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte >= 0x20 && byte != 0x7F) {
      message += c;
    } else {
      message += "\\x";
      appendHex(message, c);
    }
  }
  if (shown.size() < text.size()) message += "...";
}

// The value of a number that is written with a fraction or an exponent, when it is a whole number of at most 2^53.
// Works on the digits: as a double, 0.99999999999999999999 would be one.
std::optional<std::int64_t> wholeNumber(std::string_view number) {
  constexpr std::int64_t kLargest = std::int64_t{1} << 53;
  const bool negative = number.starts_with('-');
  if (negative) number.remove_prefix(1);
  const std::size_t exponentAt = std::min(number.find_first_of("eE"), number.size());
  std::string_view exponentText = number.substr(std::min(exponentAt + 1, number.size()));
  if (exponentText.starts_with('+')) exponentText.remove_prefix(1);
  const std::string_view mantissa = number.substr(0, exponentAt);

  // The value is `digits` with the decimal point after the first `wholeDigits` of them.
  std::string digits(mantissa);
  const std::size_t point = std::min(mantissa.find('.'), mantissa.size());
  if (point < digits.size()) digits.erase(point, 1);
  if (digits.find_first_not_of('0') == std::string::npos) return 0;
  std::int64_t exponent = 0;
  if (std::from_chars(std::to_address(exponentText.begin()), std::to_address(exponentText.end()), exponent).ec ==
      std::errc::result_out_of_range)
    return std::nullopt;
  if (std::abs(exponent) > static_cast<std::int64_t>(kLargestDocument)) return std::nullopt;
  const std::int64_t wholeDigits = static_cast<std::int64_t>(point) + exponent;

  std::int64_t value = 0;
  for (std::int64_t i = 0; i < std::max(wholeDigits, static_cast<std::int64_t>(digits.size())); ++i) {
    const int digit = i < static_cast<std::int64_t>(digits.size()) ? digits[static_cast<std::size_t>(i)] - '0' : 0;
    if (i < wholeDigits) {
      value = value * 10 + digit;
      if (value > kLargest) return std::nullopt;
    } else if (digit != 0) {
      return std::nullopt;
    }
  }
  return negative ? -value : value;
}

// What the parser calls; turns refusals into its error codes.
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
  bool on_number_part(Text, Error&) { return true; }  // comes only before the end of a document that is cut off
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

RecordBuilder::RecordBuilder(std::string_view document, const JsonType& type, void* record)
    : document_(document), levels_(kDeepestNesting), target_{.type = &type, .place = record} {}

std::string RecordBuilder::path() const {
  std::string path;
  for (std::size_t i = 0; i < depth_; ++i) {
    const Level& level = levels_[i];
    if (level.isArray) {
      if (level.count > 0) path += '[' + std::to_string(level.count - 1) + ']';
    } else if (level.key.data() != nullptr) {
      if (!path.empty()) path += '.';
      appendQuote(path, level.key);
    }
  }
  return path.empty() ? "document" : path;
}

bool RecordBuilder::refuse(const std::string& what) {
  error_ = path() + ": " + what;
  return false;
}

bool RecordBuilder::refuseType() {
  return refuse(std::string(expectation(target_.type->kind)));
}

bool RecordBuilder::take(std::size_t bytes) {
  memory_ += bytes;
  return memory_ <= kLargestRecord || refuse("the document takes more than 256 MiB of memory");
}

// The whole key or text, from its only piece or from the collected ones.
std::string_view RecordBuilder::whole(std::string_view piece, std::size_t size) {
  if (piece.size() == size) return piece;
  pieces_ += piece;
  return pieces_;
}

bool RecordBuilder::part(std::string_view piece) {
  pieces_ += piece;
  return true;
}

// Inside an array, makes its next element the target; elsewhere the latest key has chosen it.
bool RecordBuilder::aim() {
  if (depth_ == 0 || !levels_[depth_ - 1].isArray) return true;
  Level& level = levels_[depth_ - 1];
  ++level.count;
  target_ = {};
  if (!level.type) return true;
  target_ = {.type = level.element, .place = level.value, .open = level.type->append};
  // An array grows by doubling.
  return take(2 * level.element->size);
}

bool RecordBuilder::aimAtField(Level& level, std::string_view key) {
  const std::span<const JsonField> fields = level.type->fields;
  std::size_t at = level.next;
  if (at >= fields.size() || fields[at].key != key) {
    at = 0;
    while (at < fields.size() && fields[at].key != key) ++at;
    if (at == fields.size()) return skipKey(key);
  }
  const std::uint64_t bit = std::uint64_t{1} << at;
  if (level.seen & bit) return refuse("duplicate key");
  level.seen |= bit;
  level.next = at + 1;
  const JsonField& field = fields[at];
  target_ = {.type = &field.type(), .place = level.value, .open = field.open, .mayBeNull = field.mayBeNull};
  return true;
}

bool RecordBuilder::aimAtEntry(Level& level, std::string_view key) {
  // Beside key and element a node of a map holds three pointers and a colour.
  if (!take(4 * sizeof(void*) + sizeof(std::string) + key.size() + level.element->size)) return false;
  void* const element = level.type->insert(level.value, key);
  if (!element) return refuse("duplicate key");
  const auto openElement = level.type->openElement;
  target_ = {.type = level.element, .place = element, .open = openElement, .mayBeNull = openElement != nullptr};
  return true;
}

bool RecordBuilder::skipKey(std::string_view key) {
  target_ = {};
  skippedKeys_.push_back(std::hash<std::string_view>{}(key));
  return take(kSkippedKeyMemory);
}

bool RecordBuilder::key(std::string_view piece, std::size_t size) {
  Level& level = levels_[depth_ - 1];
  const std::string_view key = whole(piece, size);
  const char* const begin = document_.data();
  if (std::greater_equal<>{}(key.data(), begin) && std::less<>{}(key.data(), begin + document_.size())) {
    level.key = key;
  } else {
    level.ownKey = key.substr(0, kLongestQuote + 4);
    level.key = level.ownKey;
  }
  const bool accepted = !level.type                     ? skipKey(key)
                        : level.type->kind == Kind::map ? aimAtEntry(level, key)
                                                        : aimAtField(level, key);
  pieces_.clear();
  return accepted;
}

// The address for the value that has come; makes it present.
void* RecordBuilder::address() {
  return target_.open ? target_.open(target_.place) : target_.place;
}

bool RecordBuilder::begin(bool isArray, const JsonType* type) {
  Level& level = levels_[depth_++];
  level.type = type;
  level.element = type && type->element ? &type->element() : nullptr;
  level.value = type ? address() : nullptr;
  level.isArray = isArray;
  level.count = 0;
  level.next = 0;
  level.seen = 0;
  level.firstSkip = skippedKeys_.size();
  level.key = {};
  return true;
}

bool RecordBuilder::beginObject() {
  if (!aim()) return false;
  const JsonType* const type = target_.type;
  if (type && type->kind != Kind::record && type->kind != Kind::map) return refuseType();
  return begin(false, type);
}

bool RecordBuilder::beginArray() {
  if (!aim()) return false;
  const JsonType* const type = target_.type;
  if (type && type->kind != Kind::array) return refuseType();
  return begin(true, type);
}

bool RecordBuilder::endObject() {
  Level& level = levels_[depth_ - 1];
  if (level.type) {
    if (const std::uint64_t missing = level.type->required & ~level.seen; missing != 0) {
      level.key = level.type->fields[static_cast<std::size_t>(std::countr_zero(missing))].key;
      return refuse("is required");
    }
  }
  const auto first = skippedKeys_.begin() + static_cast<std::ptrdiff_t>(level.firstSkip);
  std::sort(first, skippedKeys_.end());
  if (std::adjacent_find(first, skippedKeys_.end()) != skippedKeys_.end()) {
    level.key = {};
    return refuse("duplicate key");
  }
  memory_ -= kSkippedKeyMemory * static_cast<std::size_t>(skippedKeys_.end() - first);
  skippedKeys_.erase(first, skippedKeys_.end());
  --depth_;
  return true;
}

bool RecordBuilder::endArray() {
  --depth_;
  return true;
}

bool RecordBuilder::text(std::string_view piece, std::size_t size) {
  const std::string_view text = whole(piece, size);
  const bool accepted = aim() && (!target_.type || assign(text));
  pieces_.clear();
  return accepted;
}

bool RecordBuilder::assign(std::string_view text) {
  switch (target_.type->kind) {
    case Kind::text:
      static_cast<std::string*>(address())->assign(text);
      return take(text.size());
    case Kind::symbol: {
      if (target_.type->assign(address(), text)) return take(text.size());
      std::string what = "unknown value \"";
      appendQuote(what, text);
      return refuse(what + '"');
    }
    default:
      return refuseType();
  }
}

bool RecordBuilder::integer(std::int64_t value) {
  if (!aim()) return false;
  if (!target_.type) return true;
  if (target_.type->kind != Kind::integer) return refuseType();
  *static_cast<std::int64_t*>(address()) = value;
  return true;
}

bool RecordBuilder::real(double approximation, std::string_view number) {
  if (!aim()) return false;
  // The parser takes 0e400 for infinity times zero.
  double exact = approximation;
  if (!std::isfinite(approximation) &&
      std::from_chars(number.data(), number.data() + number.size(), exact).ec != std::errc()) {
    return refuse("the number is out of range");
  }
  if (!target_.type) return true;
  if (target_.type->kind != Kind::integer) return refuseType();
  const std::optional<std::int64_t> value = wholeNumber(number);
  if (!value) return refuseType();
  *static_cast<std::int64_t*>(address()) = *value;
  return true;
}

bool RecordBuilder::boolean(bool value) {
  if (!aim()) return false;
  if (!target_.type) return true;
  if (target_.type->kind != Kind::boolean) return refuseType();
  *static_cast<bool*>(address()) = value;
  return true;
}

bool RecordBuilder::null() {
  if (!aim()) return false;
  return !target_.type || target_.mayBeNull || refuseType();
}

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
