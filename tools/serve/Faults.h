#pragma once

#include <expected>
#include <string>
#include <string_view>

namespace quillon::tools {

// Injected faults of the development server. A plain value.
struct Faults {
  static constexpr int kMinUploadStatus = 0;
  static constexpr int kMaxUploadStatus = 99;
  static constexpr int kMinFail = 400;
  static constexpr int kMaxFail = 599;
  static constexpr int kMaxDelay = 600'000;

  int uploadStatus = 0;  // in the response to a valid upload
  int fail = 0;          // HTTP status of every response; 0: no fault
  int delay = 0;         // milliseconds before every response

  // These faults with the changes in the JSON object `json`, or the error.
  [[nodiscard]] std::expected<Faults, std::string> changedBy(std::string_view json) const;
  [[nodiscard]] std::string toJson() const;
};

}  // namespace quillon::tools
