// Validation of the setup options.
#pragma once

#include <string>
#include <vector>

#include "quillon/ConsentSDKOptions.h"

namespace quillon {

struct CheckedOptions {
  ConsentSDKOptions options;          // normalised where the meaning is unambiguous
  std::vector<std::string> mistakes;  // one line each: the option, its value, the expected form
};

[[nodiscard]] CheckedOptions checkedOptions(ConsentSDKOptions options);

}  // namespace quillon
