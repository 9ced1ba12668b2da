#include "tools/FileContent.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <memory>
#include <system_error>

namespace quillon::tools {

std::expected<std::string, std::string> contentOf(const std::string& path) {
  const auto failure = [] { return std::unexpected(std::generic_category().message(errno)); };
  std::unique_ptr<std::FILE, int (*)(std::FILE*)> opened(nullptr, &std::fclose);
  if (path != "-") opened.reset(std::fopen(path.c_str(), "rb"));
  std::FILE* const file = path == "-" ? stdin : opened.get();
  if (!file) return failure();
  std::string content;
  for (char chunk[65536]; content.size() <= largestDocument;) {
    const auto wanted = std::min(sizeof chunk, largestDocument + 1 - content.size());
    const auto count = std::fread(chunk, 1, wanted, file);
    content.append(chunk, count);
    if (count == wanted) continue;
    if (std::ferror(file)) return failure();
    break;
  }
  return content;
}

}  // namespace quillon::tools
