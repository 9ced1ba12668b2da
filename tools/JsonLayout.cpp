#include "tools/JsonLayout.h"

#include <boost/json/serialize.hpp>

namespace quillon::tools {
namespace {

template <class Container, class Write>
std::string lines(const Container& container, std::string_view brackets, const JsonLayout& layout,
                  const std::string& indentation, Write write) {
  std::string text(1, brackets[0]);
  for (const auto& child : container) {
    if (text.size() > 1) text += ',';
    text += layout.newline + indentation + layout.level + write(child, indentation + layout.level);
  }
  return text + layout.newline + indentation + brackets[1];
}

}  // namespace

std::string laidOut(const boost::json::value& value, const JsonLayout& layout, const std::string& indentation) {
  if (value.is_object() && !value.get_object().empty()) {
    return lines(value.get_object(), "{}", layout, indentation, [&](const auto& member, const std::string& deeper) {
      return boost::json::serialize(boost::json::value(member.key())) + ": " + laidOut(member.value(), layout, deeper);
    });
  }
  if (value.is_array() && !value.get_array().empty()) {
    return lines(value.get_array(), "[]", layout, indentation,
                 [&](const auto& element, const std::string& deeper) { return laidOut(element, layout, deeper); });
  }
  return boost::json::serialize(value);
}

}  // namespace quillon::tools
