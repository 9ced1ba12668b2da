// Watches a file for changes by any process.
#pragma once

#include <array>
#include <boost/asio/io_context.hpp>
#include <boost/asio/posix/basic_stream_descriptor.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/strand.hpp>
#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>

#include "platform/linux/FileDescriptor.h"
#include "platform/linux/WorkPool.h"

namespace quillon {

// Watches the folder, so the file may appear, disappear and be replaced. Where the system cannot watch, polls every 80
// ms; while the folder is missing, at least every second. Ends with its last owner; a call of `check` may still be
// running on a pool thread then.
class FileWatch : public std::enable_shared_from_this<FileWatch> {
 public:
  // Checks the file; false when it could not and should be called again.
  using Check = std::function<bool()>;

  // `check` is called on the pool, one call at a time, after the file or its rollback journal was written, created,
  // removed or replaced.
  static std::shared_ptr<FileWatch> start(std::shared_ptr<WorkLoop> loop, std::filesystem::path file, Check check);

  FileWatch(std::shared_ptr<WorkLoop> loop, std::filesystem::path file, Check check);

  // Why the system cannot watch, usually for lack of descriptors; empty if it does.
  const std::string& fault() const { return fault_; }

 private:
  using Strand = boost::asio::strand<boost::asio::io_context::executor_type>;

  std::string watch();
  bool addFolder();
  void waitForEvents();
  // Reads all events; whether one concerns the file or its rollback journal.
  bool takeEvents();
  // Ignores events for a while: a commit causes a dozen, and each would wake a thread, also for this process's commits.
  void pause(std::chrono::milliseconds duration, void (FileWatch::*next)());
  void check();

  const std::shared_ptr<WorkLoop> loop_;
  const std::filesystem::path file_;
  const Check check_;
  std::string fault_;  // set by start()
  Strand strand_;
  // Members below are used on the strand only.
  FileDescriptor resting_;  // the inotify descriptor while it is not in events_
  boost::asio::posix::basic_stream_descriptor<Strand> events_;
  boost::asio::basic_waitable_timer<std::chrono::steady_clock, boost::asio::wait_traits<std::chrono::steady_clock>,
                                    Strand>
      pause_;
  std::chrono::milliseconds delay_{0};
  bool isFolderLost_ = false;
};

}  // namespace quillon
