// Walks through every screen as a user would, and leaves pictures.
#pragma once

#include <QImage>
#include <QObject>
#include <QQuickWindow>
#include <QString>
#include <QTimer>
#include <functional>
#include <vector>

#include "quillon/ConsentSDK.h"

class QAccessibleInterface;

// Controls are found and pressed by way of the accessibility tree, as assistive technology does it.
class Tour : public QObject {
  Q_OBJECT

 public:
  // Pictures are written to the folder, which must exist.
  Tour(QQuickWindow* window, quillon::ConsentSDK& sdk, QString folder, bool hasWebView);

 signals:
  // With an empty text when every step succeeded.
  void finished(const QString& failure);

 private:
  // A picture is taken when the step's action has succeeded and the window has come to rest.
  struct Step {
    QString picture;
    std::function<bool()> act;  // false: not possible yet
  };

  void proceed();
  bool press(const QString& name);
  bool isShown(const QString& name) const;
  QAccessibleInterface* find(QAccessibleInterface* below, const QString& name) const;
  void end(const QString& failure);

  QQuickWindow* const window_;
  const QString folder_;
  std::vector<Step> steps_;
  std::size_t step_ = 0;
  bool acted_ = false;
  int waited_ = 0;  // in ticks, for the present step
  QImage last_;
  QTimer tick_;
};
