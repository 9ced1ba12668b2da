// A unit of work, run once or repeatedly by a timer.
#pragma once

#include <functional>

namespace quillon {

using Job = std::move_only_function<void()>;

}  // namespace quillon
