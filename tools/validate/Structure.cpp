#include "tools/validate/Structure.h"

#include <boost/json/parse.hpp>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <memory>
#include <unordered_set>

#include "core/Json/RecordBuilder.h"
#include "core/Json/WholeNumber.h"
#include "tools/document/Symbols.h"
#include "tools/validate/Spelling.h"

namespace quillon::tools {
namespace {

using Kind = JsonType::Kind;

Value::Kind jsonKind(Kind kind) {
  switch (kind) {
    case Kind::boolean:
      return Value::Kind::boolean;
    case Kind::integer:
      return Value::Kind::number;
    case Kind::text:
    case Kind::symbol:
      return Value::Kind::text;
    case Kind::array:
      return Value::Kind::array;
    case Kind::map:
    case Kind::record:
      break;
  }
  return Value::Kind::object;
}

// Out of double's range. Zero with a large exponent is in range.
bool isOutOfRange(std::string_view number) {
  if (std::isfinite(boost::json::parse(number).to_number<double>())) return false;
  double exact = 0;
  return std::from_chars(number.data(), number.data() + number.size(), exact).ec != std::errc();
}

bool isWhole(std::string_view number) {
  std::int64_t value = 0;
  const char* const end = std::to_address(number.end());
  if (const auto read = std::from_chars(number.data(), end, value); read.ec == std::errc() && read.ptr == end) {
    return true;
  }
  return quillon::json::wholeNumber(number).has_value();
}

class Check {
 public:
  Check(const Document& document, Findings& findings) : document_(document), findings_(findings) {}

  // `type` is null within skipped values.
  void value(const Value& value, const JsonType* type, bool mayBeNull) {
    if (value.kind == Value::Kind::number && isOutOfRange(document_.source(value))) {
      return error(value.begin, "the number is out of range");
    }
    if (!type) {
      eachChild(value, [this](const Value& child, const std::string*) { this->value(child, nullptr, true); });
    } else if (value.kind == Value::Kind::null) {
      if (!mayBeNull) error(value.begin, std::string(quillon::json::expectation(type->kind)));
    } else if (value.kind != jsonKind(type->kind) ||
               (type->kind == Kind::integer && !isWhole(document_.source(value)))) {
      error(value.begin, std::string(quillon::json::expectation(type->kind)));
    } else if (type->kind == Kind::symbol) {
      symbol(value, *type);
    } else if (type->kind == Kind::record) {
      record(value, *type);
    } else if (type->element) {
      const JsonType& element = type->element();
      const bool isNullable = type->openElement != nullptr;
      eachChild(value, [&](const Value& child, const std::string*) { this->value(child, &element, isNullable); });
    }
  }

 private:
  // Calls with every element, or every member and its key, while steps_ is the child's path.
  template <class Use>
  void eachChild(const Value& parent, Use use) {
    std::unordered_set<std::string> keys;
    for (std::size_t i = 0; i < parent.children.size(); ++i) {
      const Value& child = parent.children[i];
      if (parent.kind == Value::Kind::array) {
        steps_.emplace_back(i);
        use(child, nullptr);
      } else {
        const std::string key = document_.key(child);
        steps_.emplace_back(key);
        if (keys.insert(key).second) {
          use(child, &key);
        } else {
          add(Level::error, "duplicate-key", child.keyBegin, "duplicate key");
        }
      }
      steps_.pop_back();
    }
  }

  void record(const Value& value, const JsonType& type) {
    std::uint64_t seen = 0;
    std::vector<std::string_view> keys;
    for (const JsonField& field : type.fields) keys.push_back(field.key);
    eachChild(value, [&](const Value& child, const std::string* key) {
      const auto found = std::ranges::find(keys, *key);
      if (found == keys.end()) {
        this->value(child, nullptr, true);
        add(Level::warning, "unknown-key", child.keyBegin,
            "the SDK knows no such key" + (findings_.isFull() ? "" : didYouMean(*key, keys)));
        return;
      }
      const auto at = static_cast<std::size_t>(found - keys.begin());
      seen |= std::uint64_t{1} << at;
      const JsonField& field = type.fields[at];
      this->value(child, field.type ? &field.type() : nullptr, field.mayBeNull);
    });
    for (std::size_t i = 0; i < keys.size(); ++i) {
      if ((type.required & ~seen & std::uint64_t{1} << i) == 0) continue;
      steps_.emplace_back(std::string(keys[i]));
      add(Level::error, "required", value.begin, "is required");
      steps_.pop_back();
    }
  }

  void symbol(const Value& value, const JsonType& type) {
    if (type.isOpen) return;
    const auto symbols = symbolsOf(type);
    const std::string text = document_.content(value);
    if (std::ranges::find(symbols, text) != symbols.end()) return;
    std::string what = "unknown value " + inQuotes(text);
    if (const auto hint = didYouMean(text, symbols); !hint.empty()) {
      what += hint;
    } else {
      for (const auto symbol : symbols) {
        what += (symbol == symbols.front() ? "; expected " : ", ") + inQuotes(symbol);
      }
    }
    add(Level::error, "value", value.begin, std::move(what));
  }

  void error(std::size_t offset, std::string text) { add(Level::error, "type", offset, std::move(text)); }

  void add(Level level, std::string_view rule, std::size_t offset, std::string text) {
    findings_.add({level, rule, DocumentPath(steps_).text(), std::move(text), offset});
  }

  const Document& document_;
  Findings& findings_;
  std::vector<DocumentPath::Step> steps_;
};

}  // namespace

void checkStructure(const Document& document, const JsonType& type, Findings& findings) {
  Check(document, findings).value(document.root(), &type, false);
}

}  // namespace quillon::tools
