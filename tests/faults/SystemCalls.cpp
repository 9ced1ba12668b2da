#include "tests/faults/SystemCalls.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdarg>
#include <mutex>
#include <optional>
#include <string_view>
#include <utility>

namespace quillon::test {
namespace {

enum class Call { looks, needsRoom };
using Kind = DiskCall::Kind;

// Set before a fault or a record begins, unchanged meanwhile.
std::string folderPath;
int currentError = 0;
int currentNumber = 0;

std::atomic<bool> armed{false};
std::atomic<int> counted{0};
std::atomic<bool> callStruck{false};

std::atomic<bool> isRecording{false};
std::mutex mutex;  // guards the calls
std::vector<DiskCall> calls;

// Bypasses the calls below.
std::uint64_t inode(int folder, const char* path, int flags) {
  struct stat status{};
  return ::syscall(SYS_newfstatat, folder, path, &status, flags) == 0 ? status.st_ino : 0;
}

// The path's name in the folder, empty for the folder itself; nullopt outside it.
std::optional<std::string> nameIn(std::string_view path) {
  if (!path.starts_with(folderPath)) return std::nullopt;
  path.remove_prefix(folderPath.size());
  if (path.empty()) return std::string();
  if (path.front() != '/') return std::nullopt;
  return std::string(path.substr(1));
}

std::optional<std::string> nameIn(const char* path) {
  return path == nullptr ? std::nullopt : nameIn(std::string_view(path));
}

std::optional<std::string> nameIn(int file) {
  const auto link = "/proc/self/fd/" + std::to_string(file);
  std::array<char, PATH_MAX> target;
  const long length = ::syscall(SYS_readlinkat, AT_FDCWD, link.c_str(), target.data(), target.size());
  if (length <= 0) return std::nullopt;
  return nameIn(std::string_view(target.data(), static_cast<std::size_t>(length)));
}

// Whether the call fails instead of doing its work.
template <class Where>
bool strike(Call call, Where where) {
  if (!armed.load(std::memory_order_acquire)) return false;
  const bool isFull = currentError == ENOSPC;
  if (isFull && call == Call::looks) return false;
  const int before = errno;
  const bool isOurs = nameIn(where).has_value();
  errno = before;
  if (!isOurs) return false;
  const int number = ++counted;
  if (isFull ? number < currentNumber : number != currentNumber) return false;
  callStruck = true;
  errno = currentError;
  return true;
}

template <class Where, class... Arguments>
int passOn(Call kind, Where where, long call, Arguments... arguments) {
  if (strike(kind, where)) return -1;
  return static_cast<int>(::syscall(call, arguments...));
}

template <class Where, class Make>
void record(Where where, const Make& make) {
  if (!isRecording) return;
  const std::lock_guard lock(mutex);
  auto name = nameIn(where);
  if (name) calls.push_back(make(std::move(*name)));
}

// Without a number, the one of what is at the path now.
void recordPath(Kind kind, const char* path, std::uint64_t file = 0, const char* before = "") {
  record(path, [&](std::string name) {
    return DiskCall{kind, file != 0 ? file : inodeOf(path), std::move(name), nameIn(before).value_or("")};
  });
}

// A sync is the folder's if that is what was synced.
void recordFile(Kind kind, int file, std::uint64_t at = 0, std::string_view bytes = {}) {
  record(file, [&](std::string name) {
    if (name.empty()) kind = Kind::syncFolder;
    return DiskCall{kind, inode(file, "", AT_EMPTY_PATH), std::move(name), {}, at, std::string(bytes)};
  });
}

template <class... Place>
ssize_t writeOn(int file, const void* bytes, std::size_t count, std::uint64_t at, long call, Place... place) {
  const ssize_t written = passOn(Call::needsRoom, file, call, file, bytes, count, place...);
  if (written > 0) {
    recordFile(Kind::write, file, at, {static_cast<const char*>(bytes), static_cast<std::size_t>(written)});
  }
  return written;
}

int syncOn(int file, long call) {
  const int done = passOn(Call::needsRoom, file, call, file);
  if (done == 0) recordFile(Kind::syncFile, file);
  return done;
}

}  // namespace

void breakCalls(const std::filesystem::path& folder, int error, int number) {
  folderPath = folder;
  currentError = error;
  currentNumber = number;
  counted = 0;
  callStruck = false;
  armed.store(true, std::memory_order_release);
}

bool restoreCalls() {
  armed = false;
  return callStruck;
}

void recordCalls(const std::filesystem::path& folder) {
  folderPath = folder;
  calls.clear();
  isRecording = true;
}

void markCall(std::string text) {
  const std::lock_guard lock(mutex);
  calls.push_back({.kind = Kind::mark, .name = std::move(text)});
}

std::vector<DiskCall> recordedCalls() {
  isRecording = false;
  const std::lock_guard lock(mutex);
  return std::exchange(calls, {});
}

std::uint64_t inodeOf(const char* path) {
  return inode(AT_FDCWD, path, AT_SYMLINK_NOFOLLOW);
}

}  // namespace quillon::test

// Interpose the C library's functions in the whole process, SQLite included. Calls outside the folder pass through.
extern "C" {

using namespace quillon::test;

int open64(const char* path, int flags, ...) {
  va_list rest;
  va_start(rest, flags);
  const mode_t mode = (flags & (O_CREAT | __O_TMPFILE)) != 0 ? static_cast<mode_t>(va_arg(rest, unsigned)) : mode_t{0};
  va_end(rest);
  const bool creates = (flags & O_CREAT) != 0;
  const bool mayCreate = creates && isRecording && inodeOf(path) == 0;
  const int file =
      passOn(creates ? Call::needsRoom : Call::looks, path, SYS_openat, AT_FDCWD, path, flags | O_LARGEFILE, mode);
  if (file >= 0 && mayCreate) recordPath(Kind::create, path);
  if (file >= 0 && !mayCreate && (flags & O_TRUNC) != 0) recordFile(Kind::resize, file);
  return file;
}
int open(const char*, int, ...) __attribute__((alias("open64")));
int mkdir(const char* path, mode_t mode) noexcept {
  return passOn(Call::needsRoom, path, SYS_mkdirat, AT_FDCWD, path, mode);
}
int mknod(const char* path, mode_t mode, dev_t device) noexcept {
  const int done = passOn(Call::needsRoom, path, SYS_mknodat, AT_FDCWD, path, mode, device);
  if (done == 0) recordPath(Kind::create, path);
  return done;
}
int link(const char* from, const char* to) noexcept {
  const int done = passOn(Call::needsRoom, from, SYS_linkat, AT_FDCWD, from, AT_FDCWD, to, 0);
  if (done == 0) recordPath(Kind::link, to);
  return done;
}

ssize_t write(int file, const void* bytes, size_t count) {
  const auto at = isRecording ? ::syscall(SYS_lseek, file, 0, SEEK_CUR) : 0;
  return writeOn(file, bytes, count, static_cast<std::uint64_t>(at), SYS_write);
}
ssize_t pwrite64(int file, const void* bytes, size_t count, off64_t offset) {
  return writeOn(file, bytes, count, static_cast<std::uint64_t>(offset), SYS_pwrite64, offset);
}
int fsync(int file) {
  return syncOn(file, SYS_fsync);
}
int fdatasync(int file) {
  return syncOn(file, SYS_fdatasync);
}
int rename(const char* from, const char* to) noexcept {
  return renameat2(AT_FDCWD, from, AT_FDCWD, to, 0);
}
int renameat2(int fromFolder, const char* from, int toFolder, const char* to, unsigned flags) noexcept {
  const int done = passOn(Call::needsRoom, from, SYS_renameat2, fromFolder, from, toFolder, to, flags);
  if (done == 0) recordPath(Kind::rename, to, 0, from);
  return done;
}

ssize_t read(int file, void* bytes, size_t count) {
  return passOn(Call::looks, file, SYS_read, file, bytes, count);
}
ssize_t pread64(int file, void* bytes, size_t count, off64_t offset) {
  return passOn(Call::looks, file, SYS_pread64, file, bytes, count, offset);
}
int ftruncate64(int file, off64_t length) noexcept {
  const int done = passOn(Call::looks, file, SYS_ftruncate, file, length);
  if (done == 0) recordFile(Kind::resize, file, static_cast<std::uint64_t>(length));
  return done;
}
int unlink(const char* path) noexcept {
  const auto inode = isRecording ? inodeOf(path) : 0;
  const int done = passOn(Call::looks, path, SYS_unlinkat, AT_FDCWD, path, 0);
  if (done == 0) recordPath(Kind::remove, path, inode);
  return done;
}
int fchmod(int file, mode_t mode) noexcept {
  return passOn(Call::looks, file, SYS_fchmod, file, mode);
}
int fchmodat(int folder, const char* path, mode_t mode, int) noexcept {
  return passOn(Call::looks, path, SYS_fchmodat, folder, path, mode);
}
int flock(int file, int operation) noexcept {
  return passOn(Call::looks, file, SYS_flock, file, operation);
}
int fcntl64(int file, int command, ...) {
  va_list rest;
  va_start(rest, command);
  void* argument = va_arg(rest, void*);
  va_end(rest);
  return passOn(Call::looks, file, SYS_fcntl, file, command, argument);
}
int lstat(const char* path, struct stat* status) noexcept {
  return passOn(Call::looks, path, SYS_newfstatat, AT_FDCWD, path, status, AT_SYMLINK_NOFOLLOW);
}
int lstat64(const char* path, struct stat64* status) noexcept {
  return passOn(Call::looks, path, SYS_newfstatat, AT_FDCWD, path, status, AT_SYMLINK_NOFOLLOW);
}
int stat64(const char* path, struct stat64* status) noexcept {
  return passOn(Call::looks, path, SYS_newfstatat, AT_FDCWD, path, status, 0);
}
int fstat(int file, struct stat* status) noexcept {
  return passOn(Call::looks, file, SYS_newfstatat, file, "", status, AT_EMPTY_PATH);
}
int fstat64(int file, struct stat64* status) noexcept {
  return passOn(Call::looks, file, SYS_newfstatat, file, "", status, AT_EMPTY_PATH);
}

}  // extern "C"
