// The Qt main loop as the SDK's main queue.
#pragma once

#include <QObject>
#include <functional>

namespace quillon {

// A singleton. The first call of instance() must be on the main thread.
class MainQueue : public QObject {
  Q_OBJECT

 public:
  static MainQueue& instance();

  // Thread-safe. Runs jobs in FIFO order in later turns of the main loop; drops them once the application object is
  // destroyed.
  void post(std::function<void()> job);

 Q_SIGNALS:
  // The application object is being destroyed: release everything that depends on it.
  void ending();

 private:
  MainQueue();
  static void end();
};

}  // namespace quillon
