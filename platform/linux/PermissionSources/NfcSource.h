// Whether the device can read near-field tags.
#pragma once

#include <filesystem>

namespace quillon {

// One when the kernel knows an adapter, zero when it knows none. Thread-safe, does not wait.
[[nodiscard]] int nfcAdapterValue(const std::filesystem::path& adapters = "/sys/class/nfc") noexcept;

}  // namespace quillon
