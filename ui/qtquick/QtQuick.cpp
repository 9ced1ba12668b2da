#include "quillon/QtQuick.h"

#include <QCoreApplication>
#include <QThread>

#include "platform/linux/LinuxFileChooser.h"
#include "platform/linux/LinuxPlatform.h"
#include "ui/qtquick/MainQueue.h"
#include "ui/qtquick/Module.h"
#include "ui/qtquick/PlacedScreen.h"
#include "ui/qtquick/QtScreenPresenter.h"

// Marks the library as linked.
extern "C" void quillonScreensAreLinked() {}

// The Linux platform looks this up by symbol name, since only screens need files.
extern "C" quillon::FileChooser* quillonFileChooser();
extern "C" quillon::FileChooser* quillonFileChooser() {
  return new quillon::LinuxFileChooser;
}

namespace quillon {

bool configureQtQuick(LinuxOptions options, QtQuickOptions screens) {
  const auto* application = QCoreApplication::instance();
  if (application && application->thread() != QThread::currentThread()) {
    qCritical("quillon::configureQtQuick: must be called on the thread of the application object; nothing is done");
    return false;
  }
  MainQueue& queue = MainQueue::instance();
  options.postToMainQueue = [&queue](std::function<void()> job) { queue.post(std::move(job)); };
  const auto presenter = QtScreenPresenter::make(screens);
  if (!configure(std::move(options), presenter)) return false;
  queue.post([presenter] { presenter->prepare(); });
  return true;
}

void addConsentElements(QQmlEngine& engine, ConsentSDK& sdk, QtQuickOptions screens) {
  addModule(engine);
  // Owned by the engine.
  new PageSdk(sdk, screens, engine);
}

}  // namespace quillon
