// Files of a POSIX system.
#pragma once

#include "platform/FileSystem.h"

namespace quillon {

// Files are made 0600 and folders 0700 whatever the umask. Writers of one folder take turns, in all processes; one that
// cannot get its turn within two seconds fails. A file that a crashed writer left half written, "<name>.new", is
// removed by the next write of the same name.
class PosixFileSystem final : public FileSystem {
 public:
  // An empty path: there is no such place.
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
