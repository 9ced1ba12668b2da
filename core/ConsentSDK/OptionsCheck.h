// What is wrong with the options of a set-up, told at once and in words that help.
#pragma once

#include <string>
#include <vector>

#include "quillon/ConsentSDKOptions.h"

namespace quillon {

struct CheckedOptions {
  ConsentSDKOptions options;          // with everything understood that has one meaning only
  std::vector<std::string> mistakes;  // one line each: which option, what it is, what it should be
};

[[nodiscard]] CheckedOptions checkedOptions(ConsentSDKOptions options);

}  // namespace quillon
