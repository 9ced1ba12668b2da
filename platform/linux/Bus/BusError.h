// Why a message-bus call failed.
#pragma once

#include <string>

#include "platform/linux/Bus/GLibPointers.h"

namespace quillon {

struct BusError {
  enum class Kind {
    absent,  // no bus, or no such service
    denied,  // refused by the bus
    silent,  // timed out
    other,
  };

  Kind kind;
  std::string name;  // the service's error name; empty if the call did not reach it
  std::string text;  // for the log
};

// Takes ownership of the error.
[[nodiscard]] BusError busError(GError* error);

}  // namespace quillon
