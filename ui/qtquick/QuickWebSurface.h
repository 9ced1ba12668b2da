// The browser of the web view sheet: what an optional library supplies.
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
  // Shows the page. Null until there is something to show; stays the surface's own.
  virtual QQuickItem* item() const = 0;
  // Of the navigation that is under way, from 0 to 1.
  virtual double progress() const = 0;

 Q_SIGNALS:
  // The item, the progress, the address, or where the history leads.
  void changed();
};

// Main thread only. The QML engine outlives what is made.
using WebSurfaceFactory = std::function<std::unique_ptr<QuickWebSurface>(QQmlEngine&)>;

// Empty while no browser is linked. Main thread only.
WebSurfaceFactory& webSurfaceFactory();

}  // namespace quillon
