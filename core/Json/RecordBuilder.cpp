#include "core/Json/RecordBuilder.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstring>
#include <functional>

#include "core/Json/WholeNumber.h"
#include "core/Text/LogText.h"

namespace quillon::json {
namespace {

using Kind = JsonType::Kind;

// The longest copy of a key for an error message.
constexpr std::size_t kLongestQuote = 64;
// The memory of a skipped key's hash, in an array that doubles as it grows.
constexpr std::size_t kSkippedKeyMemory = 2 * sizeof(std::uint64_t);

std::uint64_t wordAt(const char* place) {
  std::uint64_t word;
  std::memcpy(&word, place, sizeof word);
  return word;
}

// Compares keys, which dominates decoding: mostly in two overlapping loads.
bool areSame(std::string_view left, std::string_view right) {
  constexpr std::size_t step = sizeof(std::uint64_t);
  if (left.size() != right.size()) return false;
  if (left.size() < step) return left == right;
  const std::size_t last = left.size() - step;
  for (std::size_t i = 0; i < last; i += step) {
    if (wordAt(left.data() + i) != wordAt(right.data() + i)) return false;
  }
  return wordAt(left.data() + last) == wordAt(right.data() + last);
}

// Copies a short text in words. The library may copy in wider registers than the parser's instructions use, and then
// changing from one to the other and back takes longer than the rest of the text's parsing.
void copy(std::string_view text, std::string& to) {
  constexpr std::size_t longest = 128;
  if (text.size() > longest) {
    to.assign(text);
    return;
  }
  // GCC 12 hands over the capacity in place of the size.
  to.resize_and_overwrite(text.size(), [text](char* place, std::size_t) {
    constexpr std::size_t step = sizeof(std::uint64_t);
    std::size_t i = 0;
    for (; i + step <= text.size(); i += step) {
      const std::uint64_t word = wordAt(text.data() + i);
      std::memcpy(place + i, &word, step);
    }
    for (; i < text.size(); ++i) place[i] = text[i];
    return text.size();
  });
}

}  // namespace

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

RecordBuilder::RecordBuilder(std::string_view document, const JsonType& type, void* record)
    : document_(document), target_{.type = &type, .place = record} {
  levels_.reserve(kDeepestNesting + 1);
  top_ = &levels_.emplace_back();
}

std::string RecordBuilder::path() const {
  std::string path;
  for (const Level& level : std::span(levels_).subspan(1, static_cast<std::size_t>(top_ - levels_.data()))) {
    if (level.isArray) {
      if (level.count > 0) path += '[' + std::to_string(level.count - 1) + ']';
    } else if (level.key.data() != nullptr) {
      if (!path.empty()) path += '.';
      path += excerptForLog(level.key);
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

// The whole key or text, from its only piece or from the collected pieces.
std::string_view RecordBuilder::whole(std::string_view piece, std::size_t size) {
  if (piece.size() == size) return piece;
  pieces_ += piece;
  return pieces_;
}

bool RecordBuilder::part(std::string_view piece) {
  pieces_ += piece;
  return true;
}

// In an array, appends an element as the target; elsewhere the latest key has selected the target.
bool RecordBuilder::aim() {
  Level& level = *top_;
  if (!level.isArray) return true;
  ++level.count;
  target_.type = level.element;
  if (!level.element) return true;
  target_ = {.type = level.element, .place = level.value, .open = level.type->append};
  return take(level.elementBytes);
}

bool RecordBuilder::aimAtField(Level& level, std::string_view key) {
  const std::span<const JsonField> fields = level.type->fields;
  std::size_t at = level.next;
  if (at >= fields.size() || !areSame(fields[at].key, key)) {
    at = 0;
    while (at < fields.size() && !areSame(fields[at].key, key)) ++at;
    if (at == fields.size()) return skipKey(key);
  }
  const std::uint64_t bit = std::uint64_t{1} << at;
  if (level.seen & bit) return refuse("duplicate key");
  level.seen |= bit;
  level.next = at + 1;
  const JsonField& field = fields[at];
  target_ = {};
  if (!field.type) return true;
  target_ = {.type = &field.type(), .place = level.value, .open = field.open, .mayBeNull = field.mayBeNull};
  return true;
}

bool RecordBuilder::aimAtEntry(Level& level, std::string_view key) {
  // A map node holds three pointers and a colour in addition to key and element.
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
  Level& level = *top_;
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

// The address for the current value; makes it present.
void* RecordBuilder::address() {
  return target_.open ? target_.open(target_.place) : target_.place;
}

bool RecordBuilder::begin(bool isArray, const JsonType* type) {
  if (top_ == &levels_.back()) levels_.emplace_back();
  Level& level = *++top_;
  level.type = type;
  level.element = type && type->element ? &type->element() : nullptr;
  level.elementBytes = level.element ? 2 * level.element->size : 0;  // the array doubles as it grows
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
  Level& level = *top_;
  if (level.type) {
    if (const std::uint64_t missing = level.type->required & ~level.seen; missing != 0) {
      level.key = level.type->fields[static_cast<std::size_t>(std::countr_zero(missing))].key;
      return refuse("is required");
    }
  }
  --top_;
  if (skippedKeys_.size() == level.firstSkip) return true;
  const auto first = skippedKeys_.begin() + static_cast<std::ptrdiff_t>(level.firstSkip);
  std::sort(first, skippedKeys_.end());
  if (std::adjacent_find(first, skippedKeys_.end()) != skippedKeys_.end()) {
    ++top_;
    level.key = {};
    return refuse("duplicate key");
  }
  memory_ -= kSkippedKeyMemory * static_cast<std::size_t>(skippedKeys_.end() - first);
  skippedKeys_.erase(first, skippedKeys_.end());
  return true;
}

bool RecordBuilder::endArray() {
  --top_;
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
      copy(text, *static_cast<std::string*>(address()));
      return take(text.size());
    case Kind::symbol: {
      if (target_.type->assign(address(), text)) return take(text.size());
      std::string what = "unknown value \"";
      what += excerptForLog(text);
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
  // The parser reads 0e400 as infinity times zero.
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

}  // namespace quillon::json
