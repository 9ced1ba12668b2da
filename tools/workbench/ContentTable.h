// What users get of a configuration.
#pragma once

#include <boost/json/array.hpp>

#include "quillon/MainConfiguration.h"
#include "tools/validate/Languages.h"

namespace quillon::tools {

// A row for each banner that some place gets: {"places", "category", "type", "validity", "texts"}, the texts by
// language with heading, text, accept and reject as users read them, and "isForeign" where they read one in another
// language. The place "" is elsewhere. Of very many banners and languages the first ones, and of long texts the
// beginning.
[[nodiscard]] boost::json::array contentTable(const MainConfiguration& configuration, const Languages& languages);

}  // namespace quillon::tools
