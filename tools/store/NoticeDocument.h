// Converts a notice to a configuration that displays it.
#pragma once

#include <boost/json/object.hpp>

namespace quillon::tools {

// A configuration in one language whose banner and preference centre show the notice's texts. Colours and logo are the
// defaults, since a notice does not record them.
[[nodiscard]] boost::json::object documentShowing(const boost::json::object& notice);

}  // namespace quillon::tools
