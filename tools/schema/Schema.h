// The form of configuration documents, for editors and other programs.
#pragma once

#include <boost/json/object.hpp>

namespace quillon::tools {

// A JSON Schema (2020-12) made of the tables by which the SDK decodes a configuration. What it refuses the SDK refuses;
// the SDK also refuses what a schema cannot say, such as a duplicate key. Like the SDK it takes unknown keys.
[[nodiscard]] boost::json::object configurationSchema();

}  // namespace quillon::tools
