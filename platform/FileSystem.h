// Reading and writing whole files in the application's folders.
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

// Equal until the file is rewritten or replaced.
struct FileStamp {
  std::uint64_t device = 0;
  std::uint64_t inode = 0;
  std::uint64_t size = 0;
  std::int64_t modifiedNanoseconds = 0;

  bool operator==(const FileStamp&) const = default;
};

// Thread-safe. Never throws. Errors are texts for the log. A symbolic link as the last path component is not followed.
class FileSystem {
 public:
  template <class T>
  using Result = std::expected<T, std::string>;

  virtual ~FileSystem() = default;

  // The application's data folder; nullopt when the platform has none. It need not exist.
  virtual std::optional<std::filesystem::path> applicationSupportDirectory() const = 0;

  // Creates the folder and its parents, accessible to this user only. An existing folder is a success.
  virtual Result<void> createDirectories(const std::filesystem::path& folder) = 0;

  // nullopt when there is no such file.
  virtual std::optional<FileStamp> stamp(const std::filesystem::path& file) const = 0;

  // Reads the whole file; an error when it exceeds maximumBytes.
  virtual Result<std::string> read(const std::filesystem::path& file, std::size_t maximumBytes) const = 0;

  // Replaces the whole file atomically: after a crash it holds the old or the new bytes; the new ones are durable on
  // return.
  virtual Result<void> write(const std::filesystem::path& file, std::string_view bytes) = 0;

  // Fails when the destination exists.
  virtual Result<void> move(const std::filesystem::path& from, const std::filesystem::path& to) = 0;

  virtual Result<void> remove(const std::filesystem::path& file) = 0;
};

}  // namespace quillon
