// Calls on files that a signal does not end, and the text of a failed one for the log.
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

// Nothing on failure, with errno telling why. Never inherited by a child program.
[[nodiscard]] inline FileDescriptor openFile(const std::filesystem::path& path, int flags, mode_t mode = 0) {
  int descriptor = -1;
  do {
    descriptor = ::open(path.c_str(), flags | O_CLOEXEC, mode);
  } while (descriptor < 0 && errno == EINTR);
  return FileDescriptor(descriptor);
}

// False on failure, with errno telling why.
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
