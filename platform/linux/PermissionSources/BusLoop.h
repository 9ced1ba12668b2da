// The thread on which the message buses are talked to.
#pragma once

#include <functional>
#include <mutex>
#include <vector>

#include "platform/linux/PermissionSources/GLibPointers.h"

namespace quillon {

// Jobs and the callbacks of GLib, one at a time, in a main context of their own: the application's stays untouched.
class BusLoop {
 public:
  // Called once, on the thread that is to be the loop's. Returns when the loop has been stopped and what was still
  // under way has ended, which `leave` is to bring about; at the latest a second after the stop.
  void run(const std::function<void()>& leave);

  // Thread-safe. Once the loop has been stopped, jobs are dropped and no further callback begins.
  void stop();
  [[nodiscard]] bool stopped() const;

  // Thread-safe. Jobs run in order.
  void post(std::move_only_function<void()> job);

  // The two last arguments of an asynchronous call into GIO that is made on the loop's thread. The function is handed
  // what the call was made on and its result, once, unless the loop has been stopped before.
  using Finish = std::move_only_function<void(GObject* source, GAsyncResult* result)>;
  static void finished(GObject* source, GAsyncResult* result, gpointer expected);
  [[nodiscard]] gpointer expect(Finish finish);

 private:
  struct Expected {
    BusLoop& loop;
    Finish finish;
  };

  void runJobs();
  void drain();

  const GLibPointer<GMainContext> context_{g_main_context_new()};
  int underWay_ = 0;  // calls into GIO that have not finished; only touched on the loop's thread

  // GLib's own ways from thread to thread would do, but the thread sanitizer does not see them.
  mutable std::mutex mutex_;  // guards the members below
  std::vector<std::move_only_function<void()>> jobs_;
  bool stopped_ = false;
};

}  // namespace quillon
