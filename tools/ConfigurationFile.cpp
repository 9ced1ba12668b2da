#include "tools/ConfigurationFile.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <memory>
#include <system_error>

#include "core/Json/Codec.h"

namespace quillon::tools {
namespace {

constexpr std::size_t largestDocument = std::size_t{32} << 20;

// The whole file, or so much of a larger one that decoding refuses it.
std::expected<std::string, std::string> contentOf(const std::string& path) {
  const auto failure = [] { return std::unexpected(std::generic_category().message(errno)); };
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"), &std::fclose);
  if (!file) return failure();
  std::string content;
  for (char chunk[65536]; content.size() <= largestDocument;) {
    const auto wanted = std::min(sizeof chunk, largestDocument + 1 - content.size());
    const auto count = std::fread(chunk, 1, wanted, file.get());
    content.append(chunk, count);
    if (count == wanted) continue;
    if (std::ferror(file.get())) return failure();
    break;
  }
  return content;
}

}  // namespace

std::expected<MainConfiguration, std::string> configurationOf(const std::string& path) {
  const auto content = contentOf(path);
  return content ? decode<MainConfiguration>(*content) : std::unexpected("cannot be read: " + content.error());
}

}  // namespace quillon::tools
