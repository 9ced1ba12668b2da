// A history entry as JSON, for output.
#pragma once

#include <boost/json/object.hpp>
#include <boost/json/parse.hpp>

#include "core/Json/Codec.h"
#include "quillon/DecisionHistory.h"

namespace quillon::tools {

[[nodiscard]] inline boost::json::object toJson(const HistoryEntry& entry) {
  boost::json::object object{{"number", entry.number}};
  const auto decision = boost::json::parse(encode(entry.decision)).as_object();
  // The most relevant members first; canonical JSON sorts them by key.
  for (const char* key :
       {"time", "purpose_id", "permission", "from", "to", "cause", "given_type", "configuration_version"}) {
    if (const auto* value = decision.if_contains(key)) object.emplace(key, *value);
  }
  for (const auto& [key, value] : decision) object.emplace(key, value);
  object.emplace("upload", rawValue(entry.upload));
  object.emplace("link", rawValue(entry.link));
  object.emplace("hash", entry.hash);
  return object;
}

}  // namespace quillon::tools
