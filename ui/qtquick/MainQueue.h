// The Qt main loop as the SDK's main queue.
#pragma once

#include <QObject>
#include <functional>

namespace quillon {

// One for the process. Made on the main thread, by the first call of instance().
class MainQueue : public QObject {
  Q_OBJECT

 public:
  static MainQueue& instance();

  // From any thread. Runs the job in a later turn of the main loop, in order; drops it once the application object is
  // gone.
  void post(std::function<void()> job);

 Q_SIGNALS:
  // The application object is about to go; for what must not outlive it.
  void ending();

 private:
  MainQueue();
  static void end();
};

}  // namespace quillon
