// Why a service on a message bus gave no answer.
#pragma once

#include <string>

#include "platform/linux/PermissionSources/GLibPointers.h"

namespace quillon {

struct BusError {
  enum class Kind {
    absent,  // there is no bus, or nobody offers the service
    denied,  // the bus does not let us ask
    silent,  // no answer in time
    other,
  };

  Kind kind;
  std::string name;  // as the service calls it; empty when it did not get that far
  std::string text;  // for people
};

// Takes over the error.
[[nodiscard]] BusError busError(GError* error);

}  // namespace quillon
