// Tabulates what users of each location see.
#pragma once

#include <boost/json/array.hpp>

#include "quillon/MainConfiguration.h"
#include "tools/validate/Languages.h"

namespace quillon::tools {

// One row per banner that is shown at some location: {"places", "category", "type", "validity", "texts"}. "texts" has
// heading, text, accept and reject by language, as users read them, with "isForeign" if one of them is in another
// language. The location "" stands for all others. Limited in rows and languages; long texts are truncated.
[[nodiscard]] boost::json::array contentTable(const MainConfiguration& configuration, const Languages& languages);

}  // namespace quillon::tools
