#include "tests/faults/power/CallRecord.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <climits>
#include <mutex>
#include <optional>
#include <utility>

namespace quillon::test {
namespace {

std::atomic<bool> isRecording{false};
std::mutex mutex;  // guards the two members below
std::string recordedFolder;
std::vector<DiskCall> calls;

// Bypasses the recorded calls.
std::uint64_t inode(int folder, const char* path, int flags) {
  struct stat status{};
  return ::syscall(SYS_newfstatat, folder, path, &status, flags) == 0 ? status.st_ino : 0;
}

// The path's name in the folder, empty for the folder itself; nullopt outside it.
std::optional<std::string> nameIn(std::string_view path) {
  if (!path.starts_with(recordedFolder)) return std::nullopt;
  path.remove_prefix(recordedFolder.size());
  if (path.empty()) return std::string();
  if (path.front() != '/') return std::nullopt;
  return std::string(path.substr(1));
}

std::optional<std::string> nameIn(int file) {
  const auto link = "/proc/self/fd/" + std::to_string(file);
  std::array<char, PATH_MAX> target;
  const long length = ::syscall(SYS_readlinkat, AT_FDCWD, link.c_str(), target.data(), target.size());
  if (length <= 0) return std::nullopt;
  return nameIn(std::string_view(target.data(), static_cast<std::size_t>(length)));
}

template <class Where, class Make>
void add(Where where, const Make& make) {
  if (!isRecording) return;
  const std::lock_guard lock(mutex);
  auto name = nameIn(where);
  if (name) calls.push_back(make(std::move(*name)));
}

}  // namespace

void recordCalls(const std::filesystem::path& folder) {
  const std::lock_guard lock(mutex);
  recordedFolder = folder;
  calls.clear();
  isRecording = true;
}

void markCall(std::string text) {
  const std::lock_guard lock(mutex);
  calls.push_back({.kind = DiskCall::Kind::mark, .name = std::move(text)});
}

std::vector<DiskCall> recordedCalls() {
  isRecording = false;
  const std::lock_guard lock(mutex);
  return std::exchange(calls, {});
}

namespace record {

bool isOn() {
  return isRecording;
}

std::uint64_t inodeOf(const char* path) {
  return inode(AT_FDCWD, path, AT_SYMLINK_NOFOLLOW);
}

std::uint64_t positionOf(int file) {
  return static_cast<std::uint64_t>(::syscall(SYS_lseek, file, 0, SEEK_CUR));
}

void atPath(DiskCall::Kind kind, const char* path, std::uint64_t file, const char* before) {
  add(path, [&](std::string name) {
    return DiskCall{kind, file != 0 ? file : inodeOf(path), std::move(name),
                    nameIn(std::string_view(before)).value_or("")};
  });
}

void inFile(DiskCall::Kind kind, int file, std::uint64_t at, std::string_view bytes) {
  add(file, [&](std::string name) {
    if (name.empty()) kind = DiskCall::Kind::syncFolder;
    return DiskCall{kind, inode(file, "", AT_EMPTY_PATH), std::move(name), {}, at, std::string(bytes)};
  });
}

}  // namespace record

}  // namespace quillon::test
