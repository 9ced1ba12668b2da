// A history entry as JSON, for output.
#pragma once

#include <boost/json/object.hpp>
#include <boost/json/parse.hpp>

#include "core/Json/Codec.h"
#include "quillon/DecisionHistory.h"

namespace quillon::tools {

[[nodiscard]] inline boost::json::object toJson(const HistoryEntry& entry) {
  boost::json::object object{{"number", entry.number}};
  const auto decision = boost::json::parse(encode(entry.decision));
  for (const auto& [key, value] : decision.as_object()) object.emplace(key, value);
  object.emplace("upload", rawValue(entry.upload));
  return object;
}

}  // namespace quillon::tools
