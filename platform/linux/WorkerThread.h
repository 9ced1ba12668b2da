// A thread of the library's own.
#pragma once

#include <functional>
#include <string>
#include <thread>

namespace quillon {

// Runs its body from construction on and joins when it goes away: the owner tells the body to end before. When the body
// itself drops the last reference to the owner, a join would wait for itself; the thread is then let go and ends on its
// own, so a body keeps alive what it uses. Construction throws std::system_error when the system has no thread left.
class WorkerThread {
 public:
  // The name is for debuggers, at most 15 bytes. What the body throws is contained.
  WorkerThread(const std::string& name, std::move_only_function<void()> body);
  ~WorkerThread();
  WorkerThread(const WorkerThread&) = delete;
  WorkerThread& operator=(const WorkerThread&) = delete;

 private:
  std::thread thread_;
};

}  // namespace quillon
