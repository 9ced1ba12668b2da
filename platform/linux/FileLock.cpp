#include "platform/linux/FileLock.h"

#include <sys/file.h>
#include <sys/stat.h>

#include <utility>

#include "platform/linux/FileCalls.h"
#include "platform/linux/Ownership.h"

namespace quillon {

namespace {

class FileLock : public StoreLock {
 public:
  explicit FileLock(FileDescriptor file) : file_(std::move(file)) {}
  // Unlocks explicitly: a child forked meanwhile would keep the lock after a close.
  ~FileLock() override { ::flock(file_.get(), LOCK_UN); }

 private:
  FileDescriptor file_;
};

}  // namespace

std::expected<std::unique_ptr<StoreLock>, std::string> tryFileLock(const std::filesystem::path& file) {
  constexpr int attempts = 3;  // the file may be removed repeatedly
  for (int attempt = 0; attempt < attempts; ++attempt) {
    // Non-blocking: the path may be a pipe.
    auto opened = openFile(file, O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK, 0600);
    if (!opened) return std::unexpected(systemError("open", file));
    struct stat ours{};
    if (::fstat(opened.get(), &ours) != 0) return std::unexpected(systemError("open", file));
    if (!S_ISREG(ours.st_mode)) return std::unexpected(systemError("open", file, EINVAL));
    if (!isTrustedOwner(ours.st_uid)) return std::unexpected("open " + file.string() + ": it belongs to another user");
    while (::flock(opened.get(), LOCK_EX | LOCK_NB) != 0) {
      if (errno == EWOULDBLOCK) return nullptr;
      if (errno != EINTR) return std::unexpected(systemError("lock", file));
    }
    // If the file was removed meanwhile, another process can lock a new one at the same path.
    struct stat standing{};
    if (::lstat(file.c_str(), &standing) == 0 && standing.st_ino == ours.st_ino && standing.st_dev == ours.st_dev) {
      return std::make_unique<FileLock>(std::move(opened));
    }
  }
  return std::unexpected("lock " + file.string() + ": it keeps being removed");
}

}  // namespace quillon
