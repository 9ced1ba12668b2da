#include "platform/memory/NoPermissionSources.h"

namespace quillon {

std::expected<int, std::string> NoPermissionSources::platformValue(const VantariKey& /*key*/) const {
  return std::unexpected("not available");
}

}  // namespace quillon
