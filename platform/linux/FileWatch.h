// Notices what any process does to a file.
#pragma once

#include <array>
#include <boost/asio/io_context.hpp>
#include <boost/asio/posix/basic_stream_descriptor.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/strand.hpp>
#include <chrono>
#include <expected>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>

#include "platform/linux/WorkPool.h"

namespace quillon {

// Watches the folder, so the file may come, go and be replaced. Ends with its last owner; what looks may run once more
// on a thread of the pool at that time.
class FileWatch : public std::enable_shared_from_this<FileWatch> {
 public:
  // Looks at the file; false when it could not and wants to be called again soon, less and less often.
  using Check = std::function<bool()>;

  // The look is called on the pool, one call at a time, after the file or its rollback journal was written to, made,
  // removed or replaced. The error says why nothing can be watched, above all for want of descriptors.
  static std::expected<std::shared_ptr<FileWatch>, std::string> start(std::shared_ptr<WorkLoop> loop,
                                                                      std::filesystem::path file, Check check);

  FileWatch(std::shared_ptr<WorkLoop> loop, std::filesystem::path file, Check check, int descriptor);

 private:
  using Strand = boost::asio::strand<boost::asio::io_context::executor_type>;

  bool addFolder();
  void waitForEvents();
  void takeEvents();
  void check();

  const std::shared_ptr<WorkLoop> loop_;
  const std::filesystem::path file_;
  const Check check_;
  Strand strand_;
  // The rest belongs to the strand.
  boost::asio::posix::basic_stream_descriptor<Strand> events_;
  boost::asio::basic_waitable_timer<std::chrono::steady_clock, boost::asio::wait_traits<std::chrono::steady_clock>,
                                    Strand>
      again_;
  std::chrono::milliseconds delay_{0};
  bool isFolderLost_ = false;
};

}  // namespace quillon
