#include "tools/FileContent.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <system_error>

#include <sys/stat.h>
#include <unistd.h>

namespace quillon::tools {
namespace {

std::string lastError() {
  return std::generic_category().message(errno);
}

bool writeTo(std::FILE* file, std::string_view content) {
  return std::fwrite(content.data(), 1, content.size(), file) == content.size() && std::fflush(file) == 0;
}

}  // namespace

std::expected<std::string, std::string> contentOf(const std::string& path) {
  const auto failure = [] { return std::unexpected(lastError()); };
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

std::expected<void, std::string> replaceContent(const std::string& path, std::string_view content) {
  if (path == "-") {
    if (writeTo(stdout, content)) return {};
    return std::unexpected(lastError());
  }
  std::error_code none;
  const auto target = std::filesystem::is_symlink(path, none) ? std::filesystem::canonical(path, none).string() : path;
  std::string name = (target.empty() ? path : target) + ".XXXXXX";
  const int descriptor = mkstemp(name.data());
  if (descriptor < 0) return std::unexpected(lastError());
  const auto fail = [&name] {
    const std::string error = lastError();
    unlink(name.c_str());
    return std::unexpected(error);
  };
  // Keeps an existing file's permissions; a new file gets the umask's.
  struct stat old{};
  const mode_t mask = umask(0);
  umask(mask);
  const mode_t mode = stat(path.c_str(), &old) == 0 ? old.st_mode & 07777 : 0666 & ~mask;
  std::FILE* const file = fdopen(descriptor, "wb");
  if (!file) {
    close(descriptor);
    return fail();
  }
  const bool isWritten = writeTo(file, content) && fchmod(descriptor, mode) == 0 && fsync(descriptor) == 0;
  if (!isWritten) {
    const int error = errno;
    std::fclose(file);
    errno = error;
    return fail();
  }
  std::fclose(file);
  if (rename(name.c_str(), (target.empty() ? path : target).c_str()) != 0) return fail();
  return {};
}

}  // namespace quillon::tools
