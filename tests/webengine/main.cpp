// The web view is tested without a display, over a real engine that talks to servers of the test.
#include <gtest/gtest.h>
#include <unistd.h>

#include <QGuiApplication>

#include "quillon/QtWebEngine.h"
#include "tests/support/EngineLeaks.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/webengine/WebWorld.h"

// Of the address sanitizer, for this program alone: the engine deletes objects of its own under the size of another
// class.
extern "C" const char* __asan_default_options() {
  return "new_delete_type_mismatch=0";
}
extern "C" const char* __lsan_default_suppressions() {
  return quillon::test::kEngineLeaks;
}

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  // Whatever the engine keeps would lie in here, and nothing else.
  const quillon::test::TemporaryFolder home;
  for (const char* name : {"HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_DATA_HOME", "XDG_RUNTIME_DIR"}) {
    qputenv(name, home.path().c_str());
  }
  qputenv("QML_DISABLE_DISK_CACHE", "1");
  qputenv("QT_QPA_PLATFORM", "offscreen");
  qputenv("QT_QUICK_BACKEND", "software");
  // The engine does not run in its sandbox as root.
  if (geteuid() == 0) qputenv("QTWEBENGINE_CHROMIUM_FLAGS", "--no-sandbox --disable-gpu");
  using quillon::initializeQtWebEngine;
  quillon::test::isEngineClosed = initializeQtWebEngine();
  if (!quillon::test::isEngineClosed && !initializeQtWebEngine(quillon::UnfilteredConnections::accepted)) return 1;
  const QGuiApplication application(argc, argv);
  return RUN_ALL_TESTS();
}
