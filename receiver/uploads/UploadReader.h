// Parses the untrusted body of an upload.
#pragma once

#include <cstddef>
#include <expected>
#include <string>
#include <string_view>

#include "receiver/uploads/Upload.h"

namespace quillon::receiver {

// Larger bodies are refused; devices stay far below.
inline constexpr std::size_t kMaxBodyBytes = std::size_t{1} << 20;
inline constexpr std::size_t kMaxDecisions = 10'000;
inline constexpr std::size_t kMaxSubjectBytes = 512;
inline constexpr std::size_t kMaxNameBytes = 256;  // applications, permissions and other short texts
inline constexpr std::size_t kMaxDeviceBytes = 1024;

// A complete upload within the limits, valid for every store; or the error and its path, without the value. The caller
// sets tenant, location and time of receipt.
[[nodiscard]] std::expected<Upload, std::string> readUpload(std::string_view body);

}  // namespace quillon::receiver
