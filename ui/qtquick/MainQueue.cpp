#include "ui/qtquick/MainQueue.h"

#include <QCoreApplication>
#include <QMetaObject>
#include <mutex>
#include <utility>

namespace quillon {
namespace {

// Held while posting, so that no job is posted after the end.
std::mutex& endMutex() {
  static std::mutex mutex;
  return mutex;
}
bool hasEnded = false;  // guarded by the mutex

}  // namespace

MainQueue& MainQueue::instance() {
  // Never destroyed, since other threads may post during process exit.
  static MainQueue& queue = *new MainQueue();
  return queue;
}

MainQueue::MainQueue() {
  qAddPostRoutine(&MainQueue::end);
}

void MainQueue::end() {
  Q_EMIT instance().ending();
  const std::scoped_lock lock(endMutex());
  hasEnded = true;
}

void MainQueue::post(std::function<void()> job) {
  const std::scoped_lock lock(endMutex());
  if (!hasEnded) QMetaObject::invokeMethod(this, std::move(job), Qt::QueuedConnection);
}

}  // namespace quillon
