// Parses the application's data about the controller and the processing.
#pragma once

#include <expected>
#include <string>
#include <string_view>

#include "quillon/DataController.h"

namespace quillon::proof {

// Members are those of DataController in snake_case; unknown members are errors.
[[nodiscard]] std::expected<DataController, std::string> readController(std::string_view text);

}  // namespace quillon::proof
