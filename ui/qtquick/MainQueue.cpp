#include "ui/qtquick/MainQueue.h"

#include <QCoreApplication>
#include <QMetaObject>
#include <mutex>
#include <utility>

namespace quillon {
namespace {

// Held while a job is handed over, so that none is once the end has begun.
std::mutex& endMutex() {
  static std::mutex mutex;
  return mutex;
}
bool hasEnded = false;  // guarded by it

}  // namespace

MainQueue& MainQueue::instance() {
  // Never destroyed: other threads may still post while the process ends.
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
