// A suite's content as JSON, for output. Dates become whole seconds since 1970.
#pragma once

#include <boost/json/object.hpp>

#include "platform/KeyValueSuite.h"

namespace quillon::tools {

[[nodiscard]] boost::json::value toJson(const PropertyValue& value);

// Keys in byte order.
[[nodiscard]] boost::json::object toJson(const SuiteEntries& entries);

}  // namespace quillon::tools
