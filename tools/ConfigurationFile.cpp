#include "tools/ConfigurationFile.h"

#include "core/Json/Codec.h"
#include "tools/FileContent.h"

namespace quillon::tools {

std::expected<MainConfiguration, std::string> configurationOf(const std::string& path) {
  const auto content = contentOf(path);
  return content ? decode<MainConfiguration>(*content) : std::unexpected("cannot be read: " + content.error());
}

}  // namespace quillon::tools
