#include "platform/linux/Folder.h"

#include <sys/file.h>

#include <thread>

#include "platform/linux/FileCalls.h"

namespace quillon {

Folder::Folder(std::filesystem::path path, FileDescriptor descriptor)
    : path_(std::move(path)), descriptor_(std::move(descriptor)) {}

std::expected<Folder, std::string> Folder::open(const std::filesystem::path& path) {
  // A file name without a folder is in the working directory.
  const auto& named = path.empty() ? std::filesystem::path(".") : path;
  auto descriptor = openFile(named, O_RDONLY | O_DIRECTORY);
  if (!descriptor) return std::unexpected(systemError("open folder", named));
  return Folder(named, std::move(descriptor));
}

std::expected<std::optional<Folder>, std::string> Folder::openLocked(const std::filesystem::path& path,
                                                                     Deadline deadline) {
  auto folder = open(path);
  if (!folder) return std::unexpected(std::move(folder.error()));
  while (::flock(folder->descriptor_.get(), LOCK_EX | LOCK_NB) != 0) {
    if (errno == EINTR) continue;
    if (errno != EWOULDBLOCK) return std::unexpected(systemError("lock folder", folder->path_));
    if (std::chrono::steady_clock::now() >= deadline) return std::nullopt;
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return std::move(*folder);
}

std::expected<void, std::string> Folder::sync() const {
  if (!syncFile(descriptor_)) return std::unexpected(systemError("sync folder", path_));
  return {};
}

}  // namespace quillon
