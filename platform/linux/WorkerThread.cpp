#include "platform/linux/WorkerThread.h"

#include <pthread.h>

#include <utility>

#include "platform/parts/Contained.h"

namespace quillon {

WorkerThread::WorkerThread(const std::string& name, std::move_only_function<void()> body)
    : thread_([body = std::move(body)]() mutable {
        contained(body);
        contained([&body] { body = nullptr; });
      }) {
  pthread_setname_np(thread_.native_handle(), name.c_str());
}

WorkerThread::~WorkerThread() {
  if (thread_.get_id() == std::this_thread::get_id()) {
    thread_.detach();
  } else {
    thread_.join();
  }
}

}  // namespace quillon
