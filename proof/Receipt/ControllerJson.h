// What an application knows of the processing, as JSON.
#pragma once

#include <expected>
#include <string>
#include <string_view>

#include "quillon/DataController.h"

namespace quillon::proof {

// Members named as those of DataController, in lower case with underscores; others are errors.
[[nodiscard]] std::expected<DataController, std::string> readController(std::string_view text);

}  // namespace quillon::proof
