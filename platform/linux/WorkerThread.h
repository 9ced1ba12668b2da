// A thread owned by the library.
#pragma once

#include <functional>
#include <string>
#include <thread>

namespace quillon {

// Runs its body from construction and joins on destruction; the owner must make the body return first. When the body
// itself drops the last reference to the owner, the thread is detached, so the body must keep alive what it uses.
// Construction throws std::system_error when out of threads.
class WorkerThread {
 public:
  // The name is for debuggers; at most 15 bytes. Exceptions of the body are contained.
  WorkerThread(const std::string& name, std::move_only_function<void()> body);
  ~WorkerThread();
  WorkerThread(const WorkerThread&) = delete;
  WorkerThread& operator=(const WorkerThread&) = delete;

 private:
  std::thread thread_;
};

}  // namespace quillon
