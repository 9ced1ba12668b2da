#include "tools/document/Document.h"

#include <boost/json/parse.hpp>
#include <ranges>

#include "tools/document/Syntax.h"

namespace quillon::tools {
namespace {

constexpr std::size_t mostValues = 2'000'000;

// Locates the values of a text that is valid JSON.
class Scanner {
 public:
  explicit Scanner(std::string_view text) : text_(text) {}

  // nullopt if there are too many values.
  std::optional<Value> document() {
    Value root = value();
    if (count_ > mostValues) return std::nullopt;
    return root;
  }

 private:
  void skipBlanks() {
    while (at_ < text_.size() && std::string_view(" \t\r\n").contains(text_[at_])) ++at_;
  }

  std::uint32_t place() const { return static_cast<std::uint32_t>(at_); }

  void skipText() {
    ++at_;
    while (text_[at_] != '"') at_ += text_[at_] == '\\' ? 2 : 1;
    ++at_;
  }

  Value value() {
    ++count_;
    skipBlanks();
    Value value{.begin = place()};
    switch (text_[at_]) {
      case '{':
        value.kind = Value::Kind::object;
        children(value, '}');
        break;
      case '[':
        value.kind = Value::Kind::array;
        children(value, ']');
        break;
      case '"':
        value.kind = Value::Kind::text;
        skipText();
        break;
      default:
        value.kind = text_[at_] == 'n'                        ? Value::Kind::null
                     : text_[at_] == 't' || text_[at_] == 'f' ? Value::Kind::boolean
                                                              : Value::Kind::number;
        at_ = std::min(text_.find_first_of(" \t\r\n,]}", at_), text_.size());
    }
    value.end = place();
    return value;
  }

  // Recursion is as deep as the document, which is bounded.
  void children(Value& parent, char bracket) {
    ++at_;
    for (skipBlanks(); text_[at_] != bracket; skipBlanks()) {
      if (text_[at_] == ',') {
        ++at_;
        skipBlanks();
      }
      std::uint32_t keyBegin = 0;
      std::uint32_t keyEnd = 0;
      if (bracket == '}') {
        keyBegin = place();
        skipText();
        keyEnd = place();
        skipBlanks();
        ++at_;  // the colon
      }
      Value child = value();
      child.keyBegin = keyBegin;
      child.keyEnd = keyEnd;
      if (count_ <= mostValues) parent.children.push_back(std::move(child));
    }
    ++at_;
  }

  std::string_view text_;
  std::size_t at_ = 0;
  std::size_t count_ = 0;
};

std::string unquoted(std::string_view token) {
  if (!token.contains('\\')) return std::string(token.substr(1, token.size() - 2));
  const auto value = boost::json::parse(token);
  return std::string(value.as_string());
}

}  // namespace

std::expected<Document, SyntaxError> Document::parse(std::string text) {
  if (auto error = syntaxError(text)) return std::unexpected(*std::move(error));
  auto root = Scanner(text).document();
  if (!root) return std::unexpected(SyntaxError{{}, 0, "has more than two million values"});
  return Document(std::move(text), *std::move(root));
}

std::string_view Document::source(const Value& value) const {
  return std::string_view(text_).substr(value.begin, value.end - value.begin);
}

std::string Document::key(const Value& member) const {
  return unquoted(std::string_view(text_).substr(member.keyBegin, member.keyEnd - member.keyBegin));
}

std::string Document::content(const Value& text) const {
  return unquoted(source(text));
}

const Value* Document::child(const Value& parent, const DocumentPath::Step& step) const {
  if (const auto* index = std::get_if<std::size_t>(&step)) {
    return parent.kind == Value::Kind::array && *index < parent.children.size() ? &parent.children[*index] : nullptr;
  }
  if (parent.kind != Value::Kind::object) return nullptr;
  const std::string_view wanted = std::get<std::string>(step);
  // JSON readers use the last one of duplicate keys.
  for (const Value& member : std::views::reverse(parent.children)) {
    const auto spelt = std::string_view(text_).substr(member.keyBegin + 1, member.keyEnd - member.keyBegin - 2);
    if (spelt.contains('\\') ? key(member) == wanted : spelt == wanted) return &member;
  }
  return nullptr;
}

const Value* Document::find(const DocumentPath& path) const {
  const Value* value = &root_;
  for (const auto& step : path.steps()) {
    value = child(*value, step);
    if (!value) break;
  }
  return value;
}

const Value& Document::nearest(const DocumentPath& path) const {
  const Value* value = &root_;
  for (const auto& step : path.steps()) {
    const Value* const next = child(*value, step);
    if (!next) break;
    value = next;
  }
  return *value;
}

}  // namespace quillon::tools
