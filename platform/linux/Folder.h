// An open folder, to lock it against other processes and to make renames in it durable.
#pragma once

#include <chrono>
#include <expected>
#include <filesystem>
#include <optional>
#include <string>

#include "platform/linux/FileDescriptor.h"

namespace quillon {

class Folder {
 public:
  using Deadline = std::chrono::steady_clock::time_point;

  static std::expected<Folder, std::string> open(const std::filesystem::path& path);

  // Locks the folder, waiting until the deadline for other holders, in any process; nullopt on timeout. The lock
  // is on the folder itself: it leaves no file behind and ends with this object or the process.
  static std::expected<std::optional<Folder>, std::string> openLocked(const std::filesystem::path& path,
                                                                      Deadline deadline);

  [[nodiscard]] std::expected<void, std::string> sync() const;

 private:
  Folder(std::filesystem::path path, FileDescriptor descriptor);

  std::filesystem::path path_;
  FileDescriptor descriptor_;
};

}  // namespace quillon
