// Whole files in folders of the application's own.
#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <expected>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace quillon {

// Equal for as long as a file has not been rewritten or replaced.
struct FileStamp {
  std::uint64_t device = 0;
  std::uint64_t inode = 0;
  std::uint64_t size = 0;
  std::int64_t modifiedNanoseconds = 0;

  bool operator==(const FileStamp&) const = default;
};

// Thread-safe. Never throws. Errors are texts for the log. Links are not followed at the last step of a path.
class FileSystem {
 public:
  template <class T>
  using Result = std::expected<T, std::string>;

  virtual ~FileSystem() = default;

  // Where this application keeps its data; nothing when the platform offers no place. The folder need not exist.
  virtual std::optional<std::filesystem::path> applicationSupportDirectory() const = 0;

  // Makes the folder and its parents, readable by this user alone. An existing folder is a success.
  virtual Result<void> createDirectories(const std::filesystem::path& folder) = 0;

  // Nothing when there is no file at that path.
  virtual std::optional<FileStamp> stamp(const std::filesystem::path& file) const = 0;

  // The whole file; an error when it holds more than maximumBytes.
  virtual Result<std::string> read(const std::filesystem::path& file, std::size_t maximumBytes) const = 0;

  // Replaces the whole file: after a crash at any moment it holds the old or the new bytes, and the new ones are
  // durable when this returns.
  virtual Result<void> write(const std::filesystem::path& file, std::string_view bytes) = 0;

  // Fails when the destination exists.
  virtual Result<void> move(const std::filesystem::path& from, const std::filesystem::path& to) = 0;

  virtual Result<void> remove(const std::filesystem::path& file) = 0;
};

}  // namespace quillon
