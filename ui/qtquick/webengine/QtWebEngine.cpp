#include "quillon/QtWebEngine.h"

#include <QCoreApplication>
#include <QtWebEngineQuick>

#include "ui/qtquick/webengine/WebEngineSurface.h"

namespace quillon {
namespace {

// Web transports and the connections of WebRTC reach the network past every question that the engine asks. It reads its
// switches when it starts; later engines know the policy by the second name.
void closeSideDoors() {
  constexpr const char* variable = "QTWEBENGINE_CHROMIUM_FLAGS";
  constexpr const char* switches =
      " --disable-blink-features=WebTransport --force-webrtc-ip-handling-policy=disable_non_proxied_udp"
      " --webrtc-ip-handling-policy=disable_non_proxied_udp";
  if (const QByteArray present = qgetenv(variable); !present.contains(switches)) qputenv(variable, present + switches);
}

}  // namespace

bool initializeQtWebEngine() {
  if (QCoreApplication::instance() && !QCoreApplication::testAttribute(Qt::AA_ShareOpenGLContexts)) return false;
  closeSideDoors();
  if (!QCoreApplication::instance()) QtWebEngineQuick::initialize();
  webSurfaceFactory() = [](QQmlEngine& engine) { return std::make_unique<WebEngineSurface>(engine); };
  return true;
}

}  // namespace quillon
