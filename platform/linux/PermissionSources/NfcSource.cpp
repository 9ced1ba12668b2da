#include "platform/linux/PermissionSources/NfcSource.h"

#include <system_error>

#include "platform/parts/Contained.h"

namespace quillon {

int nfcAdapterValue(const std::filesystem::path& adapters) noexcept {
  int value = 0;
  contained([&] {
    std::error_code error;
    if (std::filesystem::directory_iterator(adapters, error) != std::filesystem::directory_iterator()) value = 1;
  });
  return value;
}

}  // namespace quillon
