#include "platform/linux/PosixFileSystem.h"

#include <sys/stat.h>

#include <algorithm>
#include <cstdio>

#include "platform/linux/BlockedWriteSignals.h"
#include "platform/linux/FileCalls.h"
#include "platform/linux/Folder.h"

namespace quillon {

namespace {

constexpr std::chrono::seconds turnLimit{2};

FileSystem::Result<void> failed(std::string_view what, const std::filesystem::path& path, int error = errno) {
  return std::unexpected(systemError(what, path, error));
}

FileSystem::Result<void> syncParent(const std::filesystem::path& path) {
  const auto folder = Folder::open(path.parent_path());
  if (!folder) return std::unexpected(folder.error());
  return folder->sync();
}

bool writeAll(const FileDescriptor& file, std::string_view bytes) {
  while (!bytes.empty()) {
    const auto written = ::write(file.get(), bytes.data(), bytes.size());
    if (written < 0) {
      if (errno == EINTR) continue;
      return false;
    }
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

FileSystem::Result<void> writeNew(const std::filesystem::path& path, std::string_view bytes) {
  const auto file = openFile(path, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, 0600);
  if (!file) return failed("create", path);
  if (::fchmod(file.get(), 0600) != 0) return failed("set mode of", path);
  if (!writeAll(file, bytes)) return failed("write", path);
  if (!syncFile(file)) return failed("sync", path);
  return {};
}

}  // namespace

PosixFileSystem::PosixFileSystem(std::filesystem::path applicationSupportDirectory)
    : applicationSupportDirectory_(std::move(applicationSupportDirectory)) {}

std::optional<std::filesystem::path> PosixFileSystem::applicationSupportDirectory() const {
  if (applicationSupportDirectory_.empty()) return std::nullopt;
  return applicationSupportDirectory_;
}

FileSystem::Result<void> PosixFileSystem::createDirectories(const std::filesystem::path& folder) {
  std::filesystem::path made;
  for (const auto& step : folder) {
    if (step.empty()) continue;  // trailing slash
    made /= step;
    if (::mkdir(made.c_str(), 0700) == 0) {
      if (::chmod(made.c_str(), 0700) != 0) return failed("set mode of", made);
      if (auto durable = syncParent(made); !durable) return durable;
    } else if (errno != EEXIST) {
      // A read-only parent (EACCES, EROFS) may still contain the next folder.
      const int error = errno;
      struct stat status{};
      if (::stat(made.c_str(), &status) != 0) return failed("create folder", made, error);
    }
  }
  struct stat status{};
  if (::lstat(made.c_str(), &status) != 0) return failed("create folder", folder);
  if (!S_ISDIR(status.st_mode)) return failed("create folder", folder, ENOTDIR);
  return {};
}

std::optional<FileStamp> PosixFileSystem::stamp(const std::filesystem::path& file) const {
  struct stat status{};
  if (::lstat(file.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
  return FileStamp{.device = status.st_dev,
                   .inode = status.st_ino,
                   .size = static_cast<std::uint64_t>(status.st_size),
                   .modifiedNanoseconds = status.st_mtim.tv_sec * 1'000'000'000 + status.st_mtim.tv_nsec};
}

FileSystem::Result<std::string> PosixFileSystem::read(const std::filesystem::path& path,
                                                      std::size_t maximumBytes) const {
  // Non-blocking, so that opening a pipe at that path does not hang.
  const auto file = openFile(path, O_RDONLY | O_NOFOLLOW | O_NONBLOCK);
  struct stat status{};
  if (!file || ::fstat(file.get(), &status) != 0) return std::unexpected(systemError("read", path));
  if (!S_ISREG(status.st_mode)) return std::unexpected(systemError("read", path, EINVAL));
  const auto announced = static_cast<std::uint64_t>(status.st_size);
  if (announced > maximumBytes) return std::unexpected(systemError("read", path, EFBIG));

  // The size is a hint: the file may grow meanwhile, so read to its end, at most one byte beyond the limit.
  std::string bytes(announced + 1, '\0');
  std::size_t length = 0;
  for (;;) {
    const auto got = ::read(file.get(), bytes.data() + length, bytes.size() - length);
    if (got < 0) {
      if (errno == EINTR) continue;
      return std::unexpected(systemError("read", path));
    }
    if (got == 0) break;
    length += static_cast<std::size_t>(got);
    if (length > maximumBytes) return std::unexpected(systemError("read", path, EFBIG));
    if (length == bytes.size()) bytes.resize(length + std::min(length, maximumBytes - length) + 1);
  }
  bytes.resize(length);
  return bytes;
}

FileSystem::Result<void> PosixFileSystem::write(const std::filesystem::path& file, std::string_view bytes) {
  const BlockedWriteSignals held;
  const auto locked = Folder::openLocked(file.parent_path(), std::chrono::steady_clock::now() + turnLimit);
  if (!locked) return std::unexpected(locked.error());
  const auto& folder = *locked;
  if (!folder) return failed("lock folder of", file, EWOULDBLOCK);

  // We hold the folder's lock, so an existing file has no living writer.
  auto fresh = file;
  fresh += ".new";
  if (::unlink(fresh.c_str()) != 0 && errno != ENOENT) return failed("remove", fresh);

  auto written = writeNew(fresh, bytes);
  if (written && ::rename(fresh.c_str(), file.c_str()) != 0) written = failed("replace", file);
  if (!written) {
    ::unlink(fresh.c_str());
    return written;
  }
  return folder->sync();
}

FileSystem::Result<void> PosixFileSystem::move(const std::filesystem::path& from, const std::filesystem::path& to) {
  if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) != 0) {
    return failed("move " + from.string() + " to", to);
  }
  if (auto durable = syncParent(to); !durable) return durable;
  if (from.parent_path() == to.parent_path()) return {};
  return syncParent(from);
}

FileSystem::Result<void> PosixFileSystem::remove(const std::filesystem::path& file) {
  if (::unlink(file.c_str()) != 0) return failed("remove", file);
  return syncParent(file);
}

}  // namespace quillon
