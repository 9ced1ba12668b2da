// A file system in memory: for hosts without a file system, simulations and tests.
#pragma once

#include <map>
#include <mutex>
#include <set>

#include "platform/FileSystem.h"

namespace quillon {

// Not shared between processes. Paths are absolute or relative to nothing; a file needs an existing parent folder, as
// on disk. The root exists.
class MemoryFileSystem final : public FileSystem {
 public:
  // nullopt: there is none.
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
    std::uint64_t inode;  // new for every write, as when a file is replaced
  };

  const std::optional<std::filesystem::path> applicationSupportDirectory_;
  mutable std::mutex mutex_;
  std::map<std::filesystem::path, File> files_;
  std::set<std::filesystem::path> folders_{"/", ""};
  std::uint64_t lastInode_ = 0;
};

}  // namespace quillon
