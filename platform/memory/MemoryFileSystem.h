// Files that are forgotten: for hosts without a file system, simulations and tests.
#pragma once

#include <map>
#include <mutex>
#include <set>

#include "platform/FileSystem.h"

namespace quillon {

// Lives in this process only. Paths are absolute or relative to nothing; a file needs an existing folder around it, as
// on disk. The root exists.
class MemoryFileSystem final : public FileSystem {
 public:
  // Nothing: there is no such place.
  explicit MemoryFileSystem(std::optional<std::filesystem::path> applicationSupportDirectory);

  std::optional<std::filesystem::path> applicationSupportDirectory() const override;
  Result<void> createDirectories(const std::filesystem::path& folder) override;
  std::optional<FileStamp> stamp(const std::filesystem::path& file) const override;
  Result<std::string> read(const std::filesystem::path& file, std::size_t maximumBytes) const override;
  Result<void> write(const std::filesystem::path& file, std::string_view bytes) override;
  Result<void> move(const std::filesystem::path& from, const std::filesystem::path& to) override;
  Result<void> remove(const std::filesystem::path& file) override;

 private:
  struct File {
    std::string bytes;
    std::uint64_t inode;  // a new one for every write, as a file that replaces another has
  };

  const std::optional<std::filesystem::path> applicationSupportDirectory_;
  mutable std::mutex mutex_;
  std::map<std::filesystem::path, File> files_;
  std::set<std::filesystem::path> folders_{"/", ""};
  std::uint64_t lastInode_ = 0;
};

}  // namespace quillon
