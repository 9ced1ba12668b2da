// A decoded configuration as it is passed around: shared and immutable; null for none.
#pragma once

#include <memory>

#include "quillon/MainConfiguration.h"

namespace quillon {

using ConfigurationPointer = std::shared_ptr<const MainConfiguration>;

}  // namespace quillon
