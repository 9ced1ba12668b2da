// Files on a POSIX system.
#pragma once

#include "platform/FileSystem.h"

namespace quillon {

// Creates files with mode 0600 and folders with 0700 regardless of the umask. Writers in one folder are serialised
// across processes; one that waits for two seconds fails. A crashed writer's partial file "<name>.new" is removed by
// the next write of that name.
class PosixFileSystem final : public FileSystem {
 public:
  // An empty path means that there is none.
  explicit PosixFileSystem(std::filesystem::path applicationSupportDirectory);

  std::optional<std::filesystem::path> applicationSupportDirectory() const override;
  Result<void> createDirectories(const std::filesystem::path& folder) override;
  std::optional<FileStamp> stamp(const std::filesystem::path& file) const override;
  Result<std::string> read(const std::filesystem::path& path, std::size_t maximumBytes) const override;
  Result<void> write(const std::filesystem::path& file, std::string_view bytes) override;
  Result<void> move(const std::filesystem::path& from, const std::filesystem::path& to) override;
  Result<void> remove(const std::filesystem::path& file) override;

 private:
  std::filesystem::path applicationSupportDirectory_;
};

}  // namespace quillon
