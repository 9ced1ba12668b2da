// A shared, immutable decoded configuration; null for none.
#pragma once

#include <memory>

#include "quillon/MainConfiguration.h"

namespace quillon {

using ConfigurationPointer = std::shared_ptr<const MainConfiguration>;

}  // namespace quillon
