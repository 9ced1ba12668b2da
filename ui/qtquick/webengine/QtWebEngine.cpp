#include "quillon/QtWebEngine.h"

#include <QtWebEngineCore/qtwebenginecoreglobal.h>

#include <QCoreApplication>
#include <QtWebEngineQuick>

#include "ui/qtquick/webengine/WebEngineSurface.h"

namespace quillon {
namespace {

// WebTransport and WebRTC bypass the engine's request filters. The engine reads its switches on start.
void disableUnfilteredTransports() {
  constexpr const char* variable = "QTWEBENGINE_CHROMIUM_FLAGS";
  constexpr const char* switches =
      " --disable-blink-features=WebTransport --force-webrtc-ip-handling-policy=disable_non_proxied_udp";
  if (const QByteArray present = qgetenv(variable); !present.contains(switches)) qputenv(variable, present + switches);
}

// The last engine version known to honour the switch for WebTransport.
bool canBeClosed() {
  constexpr int lastClosed = 102;
  return QByteArray(qWebEngineChromiumVersion()).split('.').constFirst().toInt() <= lastClosed;
}

}  // namespace

bool initializeQtWebEngine(UnfilteredConnections connections) {
  if (connections == UnfilteredConnections::refused && !canBeClosed()) return false;
  if (QCoreApplication::instance() && !QCoreApplication::testAttribute(Qt::AA_ShareOpenGLContexts)) return false;
  disableUnfilteredTransports();
  if (!QCoreApplication::instance()) QtWebEngineQuick::initialize();
  webSurfaceFactory() = [](QQmlEngine& engine) { return std::make_unique<WebEngineSurface>(engine); };
  return true;
}

}  // namespace quillon
