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
  // False when the process may open too few more files: GLib ends the application when it lacks one for its own ends.
  // So whoever is about to let it open some asks this before. Thread-safe.
  [[nodiscard]] static bool hasDescriptors();

  // What the loop needs; false when it is not to be had at the moment. Before run().
  [[nodiscard]] bool open();
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

  void wake() const;
  void runJobs();
  void drain();

  int underWay_ = 0;  // calls into GIO that have not finished; only touched on the loop's thread

  // GLib's own ways from thread to thread would do, but the thread sanitizer does not see them.
  mutable std::mutex mutex_;             // guards the members below
  GLibPointer<GMainContext> context_{};  // set once, before the loop runs
  std::vector<std::move_only_function<void()>> jobs_;
  bool stopped_ = false;
};

}  // namespace quillon
