// Reads the body of an upload, which anybody may have written.
#pragma once

#include <cstddef>
#include <expected>
#include <string>
#include <string_view>

#include "receiver/uploads/Upload.h"

namespace quillon::receiver {

// What is larger is refused: a device never comes near.
inline constexpr std::size_t kMaxBodyBytes = std::size_t{1} << 20;
inline constexpr std::size_t kMaxDecisions = 10'000;
inline constexpr std::size_t kMaxSubjectBytes = 512;
inline constexpr std::size_t kMaxNameBytes = 256;  // applications, permissions and other short texts
inline constexpr std::size_t kMaxDeviceBytes = 1024;

// Complete, within the bounds, and fit for every store; or what is wrong and where, without the value. Tenant, place
// and time of receipt are the caller's to fill in.
[[nodiscard]] std::expected<Upload, std::string> readUpload(std::string_view body);

}  // namespace quillon::receiver
