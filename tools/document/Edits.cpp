#include "tools/document/Edits.h"

#include <algorithm>
#include <boost/json/parse.hpp>
#include <boost/json/serialize.hpp>
#include <span>

namespace quillon::tools {
namespace {

namespace json = boost::json;
using Steps = std::span<const DocumentPath::Step>;

// Sets a member below an object; creates missing objects on the way.
bool setIn(json::object& object, Steps steps, const json::value& value) {
  const auto* key = std::get_if<std::string>(&steps.front());
  if (!key) return false;
  if (steps.size() == 1) {
    object[*key] = value;
    return true;
  }
  json::value& member = object[*key];
  if (member.is_null()) member.emplace_object();
  return member.is_object() && setIn(member.get_object(), steps.subspan(1), value);
}

std::string inOneLine(const json::array& list) {
  std::string text = "[";
  for (const json::value& element : list) text += (text.size() > 1 ? ", " : "") + json::serialize(element);
  return text + "]";
}

std::size_t beginOf(const Value& child) {
  return child.keyEnd > 0 ? child.keyBegin : child.begin;
}

}  // namespace

bool Edits::set(const DocumentPath& path, const json::value& value) {
  const Value* place = &document_.root();
  const Steps steps(path.steps());
  for (std::size_t i = 0; i < steps.size(); ++i) {
    const Value* const next = document_.find(DocumentPath({steps.begin(), steps.begin() + i + 1}));
    if (next) {
      place = next;
      continue;
    }
    if (place->kind == Value::Kind::object) return setIn(added_[place], steps.subspan(i), value);
    if (place->kind == Value::Kind::array) {
      json::array& further = appended_[place];
      const auto* index = std::get_if<std::size_t>(&steps[i]);
      if (!index || i + 1 != steps.size() || *index != place->children.size() + further.size()) return false;
      further.push_back(value);
      return true;
    }
    if (place->kind != Value::Kind::null) return false;
    json::value& made = replaced_.try_emplace(place, json::object()).first->second;
    return made.is_object() && setIn(made.get_object(), steps.subspan(i), value);
  }
  if (json::parse(document_.source(*place)) != value) replaced_.insert_or_assign(place, value);
  return true;
}

std::string Edits::text() const {
  std::vector<Splice> splices;
  for (const auto& [place, value] : replaced_) {
    // An array on one line stays on one line.
    const bool isOneLine = value.is_array() && !place->children.empty() && !document_.source(*place).contains('\n');
    splices.push_back(
        {place->begin, place->end,
         isOneLine ? inOneLine(value.get_array()) : laidOut(value, layout(), indentationAt(place->begin))});
  }
  for (const auto& [object, members] : added_) splices.push_back(addition(*object, members));
  for (const auto& [array, elements] : appended_) splices.push_back(addition(*array, elements));
  std::ranges::sort(splices, {}, &Splice::begin);
  std::string text;
  std::size_t at = 0;
  for (const Splice& splice : splices) {
    text.append(document_.text(), at, splice.begin - at);
    text += splice.text;
    at = splice.end;
  }
  return text.append(document_.text(), at);
}

// Appends members or elements to those that the parent has.
Edits::Splice Edits::addition(const Value& parent, const json::value& children) const {
  const JsonLayout lines = layout();
  if (parent.children.empty()) return {parent.begin, parent.end, laidOut(children, lines, indentationAt(parent.begin))};
  const Value& last = parent.children.back();
  const bool isOneLine = !document_.source(parent).contains('\n');
  const std::string indentation = indentationAt(beginOf(last));
  std::string text;
  const auto add = [&](const std::string& key, const json::value& value) {
    text += isOneLine ? ", " : "," + lines.newline + indentation;
    text += key + (isOneLine ? json::serialize(value) : laidOut(value, lines, indentation));
  };
  if (children.is_array()) {
    for (const json::value& element : children.get_array()) add({}, element);
  } else {
    for (const auto& [key, value] : children.get_object()) add(json::serialize(json::value(key)) + ": ", value);
  }
  return {last.end, last.end, text};
}

// The leading white space of the line.
std::string Edits::indentationAt(std::size_t offset) const {
  const std::string& text = document_.text();
  const auto newline = text.rfind('\n', offset);
  const auto begin = newline == std::string::npos ? 0 : newline + 1;
  const auto end = text.find_first_not_of(" \t", begin);
  return text.substr(begin, std::min(end, offset) - begin);
}

// Taken from the root's first member, which is usually on its own line.
JsonLayout Edits::layout() const {
  JsonLayout layout;
  const std::string& text = document_.text();
  if (text.contains("\r\n")) layout.newline = "\r\n";
  const Value& root = document_.root();
  if (root.children.empty()) return layout;
  const auto level = indentationAt(root.children.front().begin);
  if (!level.empty()) layout.level = level;
  return layout;
}

std::optional<std::string> without(const Document& document, const DocumentPath& path) {
  const Value* const value = document.find(path);
  const Steps steps(path.steps());
  if (!value || steps.empty()) return std::nullopt;
  const Value& parent = *document.find(DocumentPath({steps.begin(), steps.end() - 1}));
  const auto index = static_cast<std::size_t>(value - parent.children.data());
  // Removes a comma too: the preceding one or, for the first child, the following one. An only child has none.
  std::size_t begin = parent.begin + 1;
  std::size_t end = parent.end - 1;
  if (index > 0) {
    begin = parent.children[index - 1].end;
    end = value->end;
  } else if (parent.children.size() > 1) {
    begin = beginOf(*value);
    end = beginOf(parent.children[1]);
  }
  std::string text = document.text();
  return text.erase(begin, end - begin);
}

}  // namespace quillon::tools
