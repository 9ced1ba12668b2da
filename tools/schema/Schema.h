// A JSON Schema of configuration documents, for editors and other programs.
#pragma once

#include <boost/json/object.hpp>

namespace quillon::tools {

// JSON Schema 2020-12, generated from the tables that decode configurations. The SDK rejects all that the schema
// rejects, and also what a schema cannot express, such as duplicate keys. Both accept unknown keys.
[[nodiscard]] boost::json::object configurationSchema();

}  // namespace quillon::tools
