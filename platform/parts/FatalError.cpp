#include "platform/parts/FatalError.h"

#include <cstdio>
#include <cstdlib>

namespace quillon {

void abortWithMessage(std::string_view message, std::string_view file) noexcept {
  std::fprintf(stderr, "%.*s: Fatal error: %.*s\n", static_cast<int>(file.size()), file.data(),
               static_cast<int>(message.size()), message.data());
  std::fflush(stderr);
  std::abort();
}

}  // namespace quillon
