// A piece of work that is run once, or again and again by a timer.
#pragma once

#include <functional>

namespace quillon {

using Job = std::move_only_function<void()>;

}  // namespace quillon
