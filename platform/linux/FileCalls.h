// File system calls retried on EINTR, and error texts for the log.
#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

#include "platform/linux/FileDescriptor.h"

namespace quillon {

// Invalid on failure, with errno set. Not inherited by child programs.
[[nodiscard]] inline FileDescriptor openFile(const std::filesystem::path& path, int flags, mode_t mode = 0) {
  int descriptor = -1;
  do {
    descriptor = ::open(path.c_str(), flags | O_CLOEXEC, mode);
  } while (descriptor < 0 && errno == EINTR);
  return FileDescriptor(descriptor);
}

// False on failure, with errno set.
[[nodiscard]] inline bool syncFile(const FileDescriptor& file) {
  while (::fsync(file.get()) != 0) {
    if (errno != EINTR) return false;
  }
  return true;
}

// "<what> <path>: <reason>".
[[nodiscard]] inline std::string systemError(std::string_view what, const std::filesystem::path& path,
                                             int error = errno) {
  return std::string(what) + " " + path.string() + ": " + std::generic_category().message(error);
}

}  // namespace quillon
