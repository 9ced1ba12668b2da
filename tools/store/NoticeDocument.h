// What was on a screen, as a configuration that shows it again.
#pragma once

#include <boost/json/object.hpp>

namespace quillon::tools {

// A configuration in one language whose banner and preference centre show the texts of the notice. Colours and logo are
// not part of a notice, so they are the default ones.
[[nodiscard]] boost::json::object documentShowing(const boost::json::object& notice);

}  // namespace quillon::tools
