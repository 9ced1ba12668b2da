#include "platform/memory/MemoryFileSystem.h"

#include <utility>

namespace quillon {

namespace {

// The canonical path: no ".", "..", or trailing slash.
std::filesystem::path plain(const std::filesystem::path& path) {
  auto normal = path.lexically_normal();
  return normal.has_filename() ? normal : normal.parent_path();
}

std::unexpected<std::string> failed(const char* what, const std::filesystem::path& path, const char* why) {
  return std::unexpected(std::string(what) + " " + path.string() + ": " + why);
}

}  // namespace

MemoryFileSystem::MemoryFileSystem(std::optional<std::filesystem::path> applicationSupportDirectory)
    : applicationSupportDirectory_(std::move(applicationSupportDirectory)) {}

std::optional<std::filesystem::path> MemoryFileSystem::applicationSupportDirectory() const {
  return applicationSupportDirectory_;
}

FileSystem::Result<void> MemoryFileSystem::createDirectories(const std::filesystem::path& folder) {
  std::lock_guard lock(mutex_);
  std::filesystem::path made;
  for (const auto& step : plain(folder)) {
    made /= step;
    if (files_.contains(made)) return failed("create folder", folder, "Not a directory");
    folders_.insert(made);
  }
  return {};
}

std::optional<FileStamp> MemoryFileSystem::stamp(const std::filesystem::path& file) const {
  std::lock_guard lock(mutex_);
  const auto found = files_.find(plain(file));
  if (found == files_.end()) return std::nullopt;
  return FileStamp{.inode = found->second.inode, .size = found->second.bytes.size()};
}

FileSystem::Result<std::string> MemoryFileSystem::read(const std::filesystem::path& file,
                                                       std::size_t maximumBytes) const {
  std::lock_guard lock(mutex_);
  const auto found = files_.find(plain(file));
  if (found == files_.end()) return failed("read", file, "No such file or directory");
  if (found->second.bytes.size() > maximumBytes) return failed("read", file, "File too large");
  return found->second.bytes;
}

FileSystem::Result<void> MemoryFileSystem::write(const std::filesystem::path& file, std::string_view bytes) {
  std::lock_guard lock(mutex_);
  const auto path = plain(file);
  if (folders_.contains(path)) return failed("replace", file, "Is a directory");
  if (!folders_.contains(path.parent_path())) return failed("create", file, "No such file or directory");
  files_.insert_or_assign(path, File{std::string(bytes), ++lastInode_});
  return {};
}

FileSystem::Result<void> MemoryFileSystem::move(const std::filesystem::path& from, const std::filesystem::path& to) {
  std::lock_guard lock(mutex_);
  const auto target = plain(to);
  const auto found = files_.find(plain(from));
  if (found == files_.end()) return failed("move", from, "No such file or directory");
  if (files_.contains(target) || folders_.contains(target)) return failed("move to", to, "File exists");
  if (!folders_.contains(target.parent_path())) return failed("move to", to, "No such file or directory");
  auto node = files_.extract(found);
  node.key() = target;
  files_.insert(std::move(node));
  return {};
}

FileSystem::Result<void> MemoryFileSystem::remove(const std::filesystem::path& file) {
  std::lock_guard lock(mutex_);
  if (files_.erase(plain(file)) == 0) return failed("remove", file, "No such file or directory");
  return {};
}

}  // namespace quillon
