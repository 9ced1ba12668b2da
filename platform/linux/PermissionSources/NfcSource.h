// Whether the device has an NFC reader.
#pragma once

#include <filesystem>

namespace quillon {

// 1 when the kernel has an adapter, else 0. Thread-safe, does not wait.
[[nodiscard]] int nfcAdapterValue(const std::filesystem::path& adapters = "/sys/class/nfc") noexcept;

}  // namespace quillon
