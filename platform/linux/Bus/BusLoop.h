// The event loop of the message buses.
#pragma once

#include <functional>
#include <mutex>
#include <vector>

#include "platform/linux/Bus/GLibPointers.h"

namespace quillon {

// Runs jobs and GLib callbacks, one at a time, in its own main context; the application's is not touched.
class BusLoop {
 public:
  // False when too few descriptors are left: GLib terminates the application when it lacks one for itself. Check it
  // before any GLib call that opens descriptors. Thread-safe.
  [[nodiscard]] static bool hasDescriptors();

  // Acquires the loop's resources; false when unavailable at the moment. Call before run().
  [[nodiscard]] bool open();
  // Called once, on the loop's thread. Returns when the loop was stopped and running operations, which `leave` must
  // cancel, have ended; at the latest one second after stop().
  void run(const std::function<void()>& leave);

  // Thread-safe. Afterwards jobs are dropped and no callback begins.
  void stop();
  [[nodiscard]] bool stopped() const;

  // Thread-safe. Jobs run in order.
  void post(std::move_only_function<void()> job);

  // The last two arguments of an asynchronous GIO call made on the loop's thread. The function receives the source
  // object and the result, once, unless the loop is stopped first.
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

  int underWay_ = 0;  // unfinished GIO calls; used on the loop's thread only

  // A queue of our own, since the thread sanitizer cannot follow GLib's.
  mutable std::mutex mutex_;             // guards the members below
  GLibPointer<GMainContext> context_{};  // set once, before the loop runs
  std::vector<std::move_only_function<void()>> jobs_;
  bool stopped_ = false;
};

}  // namespace quillon
