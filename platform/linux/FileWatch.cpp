#include "platform/linux/FileWatch.h"

#include <sys/inotify.h>

#include <algorithm>
#include <string_view>
#include <utility>

#include "platform/linux/FileCalls.h"
#include "platform/parts/Contained.h"

namespace quillon {

namespace {

using namespace std::chrono_literals;

constexpr auto soonest = 10ms;
// Below the promised 100 ms between a commit and its report.
constexpr auto latest = 80ms;
constexpr auto latestWithoutFolder = 1000ms;

constexpr std::uint32_t folderGone = IN_DELETE_SELF | IN_MOVE_SELF | IN_IGNORED | IN_UNMOUNT;
constexpr std::uint32_t changes = IN_MODIFY | IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO;

}  // namespace

FileWatch::FileWatch(std::shared_ptr<WorkLoop> loop, std::filesystem::path file, Check check)
    : loop_(std::move(loop)),
      file_(std::move(file)),
      check_(std::move(check)),
      strand_(boost::asio::make_strand(loop_->context())),
      events_(strand_),
      pause_(strand_) {}

std::shared_ptr<FileWatch> FileWatch::start(std::shared_ptr<WorkLoop> loop, std::filesystem::path file, Check check) {
  auto started = std::make_shared<FileWatch>(std::move(loop), std::move(file), std::move(check));
  started->fault_ = started->watch();
  boost::asio::post(started->strand_, [weak = started->weak_from_this()] {
    const auto self = weak.lock();
    if (!self || self->loop_->isClosed()) return;
    contained([&] { self->check(); });  // for changes made before
  });
  return started;
}

std::string FileWatch::watch() {
  resting_ = FileDescriptor(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC));
  if (!resting_) return systemError("watch", file_);
  return addFolder() ? std::string() : systemError("watch", file_.parent_path());
}

bool FileWatch::addFolder() {
  return ::inotify_add_watch(resting_.get(), file_.parent_path().c_str(),
                             changes | IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR) >= 0;
}

void FileWatch::waitForEvents() {
  boost::system::error_code problem;
  events_.assign(resting_.get(), problem);               // NOLINT(bugprone-unused-return-value): it is this error
  if (problem) return pause(latest, &FileWatch::check);  // polls the file instead
  (void)resting_.release();
  events_.async_wait(boost::asio::posix::descriptor_base::wait_read, [weak = weak_from_this()](auto error) {
    const auto self = weak.lock();
    if (!self || error || self->loop_->isClosed()) return;
    self->resting_ = FileDescriptor(self->events_.release());
    contained([&] { self->takeEvents() ? self->check() : self->pause(soonest, &FileWatch::waitForEvents); });
  });
}

bool FileWatch::takeEvents() {
  const std::string name = file_.filename();
  const std::string journal = name + "-journal";
  bool isConcerned = false;
  alignas(inotify_event) std::array<char, 4096> buffer;
  for (;;) {
    const auto count = ::read(resting_.get(), buffer.data(), buffer.size());
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) break;
    for (std::size_t at = 0; at < static_cast<std::size_t>(count);) {
      const auto& event = *reinterpret_cast<const inotify_event*>(&buffer[at]);
      at += sizeof event + event.len;
      if ((event.mask & folderGone) != 0) isFolderLost_ = true;
      const std::string_view changed = event.len > 0 ? event.name : "";
      if (changed.empty() || changed == name || changed == journal) isConcerned = true;
    }
  }
  return isConcerned;
}

void FileWatch::check() {
  if (isFolderLost_ && addFolder()) isFolderLost_ = false;
  const bool isBusy = !check_();
  if (!isBusy && !isFolderLost_ && fault_.empty()) {
    delay_ = 0ms;
    return pause(soonest, &FileWatch::waitForEvents);
  }
  const auto longest = isFolderLost_ ? latestWithoutFolder : latest;
  delay_ = std::clamp<std::chrono::milliseconds>(isBusy || isFolderLost_ ? delay_ * 2 : longest, soonest, longest);
  pause(delay_, &FileWatch::check);
}

void FileWatch::pause(std::chrono::milliseconds duration, void (FileWatch::*next)()) {
  pause_.expires_after(duration);
  pause_.async_wait([weak = weak_from_this(), next](auto error) {
    const auto self = weak.lock();
    if (self && !error && !self->loop_->isClosed()) contained([&] { (self.get()->*next)(); });
  });
}

}  // namespace quillon
