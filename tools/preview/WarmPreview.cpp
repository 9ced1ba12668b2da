#include "tools/preview/WarmPreview.h"

#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/socket.h>
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

constexpr auto longestDrawing = std::chrono::seconds(20);  // the first drawing also loads the fonts
constexpr std::int64_t largestPicture = 256 << 20;
constexpr std::size_t largestLine = 1 << 20;

// Waits until the descriptor is ready or the deadline has passed.
bool await(int descriptor, short event, std::chrono::steady_clock::time_point deadline) {
  for (;;) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
    pollfd waiting{.fd = descriptor, .events = event, .revents = 0};
    const int ready = left.count() > 0 ? poll(&waiting, 1, static_cast<int>(left.count())) : 0;
    if (ready < 0 && errno == EINTR) continue;
    return ready > 0;
  }
}

std::vector<preview::MeasuredAnswer> answersIn(const json::object& answer) {
  std::vector<preview::MeasuredAnswer> answers;
  const auto* list = answer.if_contains("answers");
  if (!list || !list->is_array()) return answers;
  for (const json::value& measured : list->get_array()) {
    const auto number = [&measured](std::string_view key) {
      const auto* object = measured.if_object();
      const auto* value = object ? object->if_contains(key) : nullptr;
      return value && value->is_number() ? value->to_number<double>() : 0;
    };
    answers.push_back({.width = static_cast<int>(number("width")),
                       .height = static_cast<int>(number("height")),
                       .weight = static_cast<int>(number("weight")),
                       .contrast = number("contrast"),
                       .prominence = number("prominence")});
    if (const auto* text = measured.as_object().if_contains("text"); text && text->is_string()) {
      answers.back().text = text->get_string();
    }
  }
  return answers;
}

}  // namespace

WarmPreview::~WarmPreview() {
  end();
}

std::expected<DrawnScreen, std::string> WarmPreview::draw(json::object view, std::string_view document) {
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
  const auto lineEnd = read_.find('\n');
  boost::system::error_code error;
  const json::value answer = json::parse(std::string_view(read_).substr(0, lineEnd), error);
  read_.erase(0, lineEnd + 1);
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
  return DrawnScreen{std::exchange(read_, {}).substr(0, size), answersIn(*object)};
}

bool WarmPreview::start() {
  std::error_code error;
  const auto self = std::filesystem::read_symlink("/proc/self/exe", error);
  std::string program = self.parent_path() / "quillon-consent-preview";
  if (access(program.c_str(), X_OK) != 0) return false;
  int ends[2];
  if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) return false;
  posix_spawn_file_actions_t files;
  posix_spawn_file_actions_init(&files);
  posix_spawn_file_actions_adddup2(&files, ends[1], STDIN_FILENO);
  posix_spawn_file_actions_adddup2(&files, ends[1], STDOUT_FILENO);
  // The program must not inherit this process's blocked signals.
  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  sigset_t none;
  sigemptyset(&none);
  posix_spawnattr_setsigmask(&attributes, &none);
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK);
  std::string option = "--on-demand";
  char* arguments[] = {program.data(), option.data(), nullptr};
  pid_t started = -1;
  const bool isStarted = posix_spawn(&started, program.c_str(), &files, &attributes, arguments, environ) == 0;
  posix_spawnattr_destroy(&attributes);
  posix_spawn_file_actions_destroy(&files);
  close(ends[1]);
  connection_ = ends[0];
  if (isStarted) program_ = started;
  if (!isStarted) end();
  return isStarted;
}

void WarmPreview::end() {
  if (connection_ >= 0) close(std::exchange(connection_, -1));
  if (program_ > 0) {
    kill(program_, SIGKILL);  // it has no state to save
    waitpid(program_, nullptr, 0);
  }
  program_ = -1;
  read_.clear();
}

bool WarmPreview::write(std::string_view bytes, Deadline deadline) {
  while (!bytes.empty()) {
    if (!await(connection_, POLLOUT, deadline)) return false;
    const auto count = send(connection_, bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
    if (count < 0 && (errno == EINTR || errno == EAGAIN)) continue;
    if (count <= 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
  return true;
}

bool WarmPreview::readMore(Deadline deadline) {
  char chunk[65536];
  for (;;) {
    if (!await(connection_, POLLIN, deadline)) return false;
    const auto count = recv(connection_, chunk, sizeof chunk, 0);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return false;
    read_.append(chunk, static_cast<std::size_t>(count));
    return true;
  }
}

}  // namespace quillon::tools
