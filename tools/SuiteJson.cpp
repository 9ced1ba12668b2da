#include "tools/SuiteJson.h"

#include <boost/json/value_from.hpp>
#include <map>

#include "platform/Clock.h"

namespace quillon::tools {
namespace {

namespace json = boost::json;

struct ToJson {
  json::value operator()(bool value) const { return value; }
  json::value operator()(std::int64_t value) const { return value; }
  json::value operator()(const std::string& value) const { return json::value(value); }
  json::value operator()(PropertyDate value) const { return wholeSeconds(value); }
  template <class T>
  json::value operator()(const std::vector<T>& list) const {
    return json::value_from(list);
  }
};

}  // namespace

json::value toJson(const PropertyValue& value) {
  return std::visit(ToJson(), value);
}

json::object toJson(const SuiteEntries& entries) {
  json::object object;
  for (const auto& [key, value] : std::map<std::string_view, PropertyValue>(entries.begin(), entries.end())) {
    object.emplace(key, toJson(value));
  }
  return object;
}

}  // namespace quillon::tools
