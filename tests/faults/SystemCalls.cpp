#include "tests/faults/SystemCalls.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <string_view>

#include "tests/faults/power/CallRecord.h"

namespace quillon::test {
namespace {

enum class Call { looks, needsRoom, writes };

// What a failing call does instead of its work.
enum class Instead { nothing, fail, half };

std::atomic<bool> armed{false};
std::atomic<int> counted{0};
std::atomic<bool> struck{false};
// Set before `armed`, unchanged while it is set.
char folderPath[PATH_MAX];
std::size_t folderLength = 0;
Effect current{};
int currentNumber = 0;

// Uses no library call that could re-enter or allocate.
bool inFolder(const char* path) {
  return path != nullptr && std::strncmp(path, folderPath, folderLength) == 0;
}

bool inFolder(int descriptor) {
  char link[64];
  char target[PATH_MAX];
  std::snprintf(link, sizeof link, "/proc/self/fd/%d", descriptor);
  const long length = ::syscall(SYS_readlinkat, AT_FDCWD, link, target, sizeof target - 1);
  if (length <= 0) return false;
  target[length] = '\0';
  return inFolder(target);
}

bool concerns(Effect effect, Call call) {
  if (effect == Effect::full) return call != Call::looks;
  return effect != Effect::shortened || call == Call::writes;
}

template <class Where>
Instead strike(Call call, Where where) {
  if (!armed.load(std::memory_order_acquire) || !concerns(current, call)) return Instead::nothing;
  const int before = errno;
  const bool ours = inFolder(where);
  errno = before;
  if (!ours) return Instead::nothing;
  const int number = ++counted;
  if (current == Effect::full ? number < currentNumber : number != currentNumber) return Instead::nothing;
  struck = true;
  switch (current) {
    case Effect::kill:
      ::syscall(SYS_kill, ::getpid(), SIGKILL);
      break;
    case Effect::shortened:
      return Instead::half;
    case Effect::failing:
      errno = EIO;
      break;
    case Effect::full:
      errno = ENOSPC;
      break;
    case Effect::interrupted:
      errno = EINTR;
      break;
  }
  return Instead::fail;
}

template <class Where, class... Arguments>
int passOn(Call kind, Where where, long call, Arguments... arguments) {
  if (strike(kind, where) == Instead::fail) return -1;
  return static_cast<int>(::syscall(call, arguments...));
}

template <class Write>
ssize_t writeOn(int file, const void* bytes, std::size_t count, std::uint64_t at, const Write& write) {
  const Instead instead = strike(Call::writes, file);
  if (instead == Instead::fail) return -1;
  const ssize_t written = write(instead == Instead::half ? (count + 1) / 2 : count);
  if (written > 0) {
    record::inFile(DiskCall::Kind::write, file, at, {static_cast<const char*>(bytes), static_cast<size_t>(written)});
  }
  return written;
}

}  // namespace

void breakCalls(const std::filesystem::path& folder, Effect effect, int number) {
  folderLength = folder.string().copy(folderPath, sizeof folderPath - 1);
  current = effect;
  currentNumber = number;
  counted = 0;
  struck = false;
  armed.store(true, std::memory_order_release);
}

bool restoreCalls() {
  armed = false;
  return struck;
}

}  // namespace quillon::test

// Interpose the C library's functions in the whole process, SQLite included. Calls outside the folder pass through.
extern "C" {

using quillon::test::Call;
using Kind = quillon::test::DiskCall::Kind;
using quillon::test::passOn;
namespace record = quillon::test::record;
using quillon::test::writeOn;

int open64(const char* path, int flags, ...) {
  va_list rest;
  va_start(rest, flags);
  const mode_t mode = (flags & (O_CREAT | __O_TMPFILE)) != 0 ? static_cast<mode_t>(va_arg(rest, unsigned)) : mode_t{0};
  va_end(rest);
  const bool creates = (flags & O_CREAT) != 0;
  const bool mayCreate = creates && record::isOn() && record::inodeOf(path) == 0;
  const int file =
      passOn(creates ? Call::needsRoom : Call::looks, path, SYS_openat, AT_FDCWD, path, flags | O_LARGEFILE, mode);
  if (file >= 0 && mayCreate) record::atPath(Kind::create, path);
  if (file >= 0 && !mayCreate && (flags & O_TRUNC) != 0) record::inFile(Kind::resize, file);
  return file;
}
int open(const char*, int, ...) __attribute__((alias("open64")));
int mkdir(const char* path, mode_t mode) noexcept {
  return passOn(Call::needsRoom, path, SYS_mkdirat, AT_FDCWD, path, mode);
}
int mknod(const char* path, mode_t mode, dev_t device) noexcept {
  const int done = passOn(Call::needsRoom, path, SYS_mknodat, AT_FDCWD, path, mode, device);
  if (done == 0) record::atPath(Kind::create, path);
  return done;
}
int link(const char* from, const char* to) noexcept {
  const int done = passOn(Call::needsRoom, from, SYS_linkat, AT_FDCWD, from, AT_FDCWD, to, 0);
  if (done == 0) record::atPath(Kind::link, to);
  return done;
}

ssize_t write(int file, const void* bytes, size_t count) {
  const auto at = record::isOn() ? record::positionOf(file) : 0;
  return writeOn(file, bytes, count, at, [&](size_t taken) { return ::syscall(SYS_write, file, bytes, taken); });
}
ssize_t pwrite64(int file, const void* bytes, size_t count, off64_t offset) {
  return writeOn(file, bytes, count, static_cast<std::uint64_t>(offset),
                 [&](size_t taken) { return ::syscall(SYS_pwrite64, file, bytes, taken, offset); });
}
int fsync(int file) {
  const int done = passOn(Call::needsRoom, file, SYS_fsync, file);
  if (done == 0) record::inFile(Kind::syncFile, file);
  return done;
}
int fdatasync(int file) {
  const int done = passOn(Call::needsRoom, file, SYS_fdatasync, file);
  if (done == 0) record::inFile(Kind::syncFile, file);
  return done;
}
int rename(const char* from, const char* to) noexcept {
  return renameat2(AT_FDCWD, from, AT_FDCWD, to, 0);
}
int renameat2(int fromFolder, const char* from, int toFolder, const char* to, unsigned flags) noexcept {
  const int done = passOn(Call::needsRoom, from, SYS_renameat2, fromFolder, from, toFolder, to, flags);
  if (done == 0) record::atPath(Kind::rename, to, 0, from);
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
  if (done == 0) record::inFile(Kind::resize, file, static_cast<std::uint64_t>(length));
  return done;
}
int unlink(const char* path) noexcept {
  const auto inode = record::isOn() ? record::inodeOf(path) : 0;
  const int done = passOn(Call::looks, path, SYS_unlinkat, AT_FDCWD, path, 0);
  if (done == 0) record::atPath(Kind::remove, path, inode);
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
