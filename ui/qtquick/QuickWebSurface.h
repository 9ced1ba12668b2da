// The browser of the web view sheet, implemented by an optional library.
#pragma once

#include <QtQml/qqmlregistration.h>
#include <QObject>
#include <QQmlEngine>
#include <QQuickItem>
#include <functional>
#include <memory>

#include "ui/Common/WebView/WebSurface.h"

namespace quillon {

class QuickWebSurface : public QObject, public WebSurface {
  Q_OBJECT
  QML_ANONYMOUS

 public:
  // The page's item, owned by the surface. Null until there is something to show.
  virtual QQuickItem* item() const = 0;
  // The present navigation's progress, from 0 to 1.
  virtual double progress() const = 0;

 Q_SIGNALS:
  // Emitted on changes of item, progress, address, and availability of history.
  void changed();
};

// Main thread only. The QML engine outlives the surfaces.
using WebSurfaceFactory = std::function<std::unique_ptr<QuickWebSurface>(QQmlEngine&)>;

// Empty if no browser is linked. Main thread only.
WebSurfaceFactory& webSurfaceFactory();

}  // namespace quillon
