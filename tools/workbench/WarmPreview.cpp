#include "tools/workbench/WarmPreview.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <boost/json/parse.hpp>
#include <boost/json/serialize.hpp>
#include <filesystem>
#include <system_error>
#include <utility>

namespace quillon::tools {
namespace {

namespace json = boost::json;

constexpr auto longestDrawing = std::chrono::seconds(20);  // the first one reads the fonts, too
constexpr std::int64_t largestPicture = 256 << 20;
constexpr std::size_t largestLine = 4096;

// Whether the descriptor can be used in time.
bool await(int descriptor, short event, std::chrono::steady_clock::time_point deadline) {
  for (;;) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
    pollfd waiting{.fd = descriptor, .events = event, .revents = 0};
    const int ready = left.count() > 0 ? poll(&waiting, 1, static_cast<int>(left.count())) : 0;
    if (ready < 0 && errno == EINTR) continue;
    return ready > 0;
  }
}

}  // namespace

WarmPreview::~WarmPreview() {
  end();
}

std::expected<std::string, std::string> WarmPreview::picture(json::object view, std::string_view document) {
  const std::lock_guard lock(mutex_);
  if (program_ < 0 && !start()) return std::unexpected("the screens cannot be drawn: they were built without Qt Quick");
  const auto fail = [this](const char* what) {
    end();
    return std::unexpected(what);
  };
  const auto deadline = std::chrono::steady_clock::now() + longestDrawing;
  view["bytes"] = document.size();
  if (!write(json::serialize(view) + '\n', deadline) || !write(document, deadline)) {
    return fail("the screens cannot be drawn: their program ended");
  }
  while (!read_.contains('\n')) {
    if (read_.size() > largestLine || !readMore(deadline)) return fail("the screen was not drawn in time");
  }
  const auto end = read_.find('\n');
  boost::system::error_code error;
  const json::value answer = json::parse(std::string_view(read_).substr(0, end), error);
  read_.erase(0, end + 1);
  const auto* object = error ? nullptr : answer.if_object();
  if (!object) return fail("the screens' program cannot be understood");
  if (const auto* what = object->if_contains("error"); what && what->is_string()) {
    return std::unexpected(std::string(what->get_string()));
  }
  const auto* bytes = object->if_contains("bytes");
  if (!bytes || !bytes->is_int64() || bytes->get_int64() < 0 || bytes->get_int64() > largestPicture) {
    return fail("the screens' program cannot be understood");
  }
  const auto size = static_cast<std::size_t>(bytes->get_int64());
  while (read_.size() < size) {
    if (!readMore(deadline)) return fail("the screen was not drawn in time");
  }
  return std::exchange(read_, {}).substr(0, size);
}

bool WarmPreview::start() {
  std::error_code error;
  const auto self = std::filesystem::read_symlink("/proc/self/exe", error);
  std::string program = self.parent_path() / "quillon-consent-preview";
  if (access(program.c_str(), X_OK) != 0) return false;
  int toProgram[2];
  int fromProgram[2];
  if (pipe2(toProgram, O_CLOEXEC) != 0) return false;
  if (pipe2(fromProgram, O_CLOEXEC) != 0) {
    close(toProgram[0]);
    close(toProgram[1]);
    return false;
  }
  posix_spawn_file_actions_t files;
  posix_spawn_file_actions_init(&files);
  posix_spawn_file_actions_adddup2(&files, toProgram[0], STDIN_FILENO);
  posix_spawn_file_actions_adddup2(&files, fromProgram[1], STDOUT_FILENO);
  // Signals as usual, whatever this process waits for.
  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  sigset_t none;
  sigemptyset(&none);
  posix_spawnattr_setsigmask(&attributes, &none);
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK);
  std::string option = "--on-demand";
  char* arguments[] = {program.data(), option.data(), nullptr};
  const bool isStarted = posix_spawn(&program_, program.c_str(), &files, &attributes, arguments, environ) == 0;
  posix_spawnattr_destroy(&attributes);
  posix_spawn_file_actions_destroy(&files);
  close(toProgram[0]);
  close(fromProgram[1]);
  input_ = toProgram[1];
  output_ = fromProgram[0];
  // A program that reads no more must not hold us.
  fcntl(input_, F_SETFL, O_NONBLOCK);
  if (!isStarted) end();
  return isStarted;
}

void WarmPreview::end() {
  if (input_ >= 0) close(std::exchange(input_, -1));
  if (output_ >= 0) close(std::exchange(output_, -1));
  if (program_ > 0) {
    kill(program_, SIGKILL);  // it keeps nothing
    waitpid(program_, nullptr, 0);
  }
  program_ = -1;
  read_.clear();
}

bool WarmPreview::write(std::string_view bytes, Deadline deadline) {
  while (!bytes.empty()) {
    if (!await(input_, POLLOUT, deadline)) return false;
    const auto count = ::write(input_, bytes.data(), bytes.size());
    if (count < 0 && (errno == EINTR || errno == EAGAIN)) continue;
    if (count <= 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
  return true;
}

bool WarmPreview::readMore(Deadline deadline) {
  char chunk[65536];
  for (;;) {
    if (!await(output_, POLLIN, deadline)) return false;
    const auto count = read(output_, chunk, sizeof chunk);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return false;
    read_.append(chunk, static_cast<std::size_t>(count));
    return true;
  }
}

}  // namespace quillon::tools
