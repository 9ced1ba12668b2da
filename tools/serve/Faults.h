#pragma once

#include <expected>
#include <string>
#include <string_view>

namespace quillon::tools {

// How the development server misbehaves on request. A plain value.
struct Faults {
  static constexpr int kMinUploadStatus = 0;
  static constexpr int kMaxUploadStatus = 99;
  static constexpr int kMinFail = 400;
  static constexpr int kMaxFail = 599;
  static constexpr int kMaxDelay = 600'000;

  int uploadStatus = 0;  // in the answer to a valid upload
  int fail = 0;          // HTTP status of every answer; 0: none
  int delay = 0;         // milliseconds before every answer

  // These faults with the changes of the JSON object json; the error says what is wrong with it.
  [[nodiscard]] std::expected<Faults, std::string> changedBy(std::string_view json) const;
  [[nodiscard]] std::string toJson() const;
};

}  // namespace quillon::tools
