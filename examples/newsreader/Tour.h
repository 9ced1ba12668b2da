// Walks through every screen as a user would, and saves pictures.
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

// Finds and activates controls through the accessibility tree, as assistive technology does.
class Tour : public QObject {
  Q_OBJECT

 public:
  // Writes pictures to the folder, which must exist.
  Tour(QQuickWindow* window, quillon::ConsentSDK& sdk, QString folder, bool hasWebView);

 signals:
  // Called with an empty text when every step succeeded, else with the error.
  void finished(const QString& failure);

 private:
  // Takes a picture when the step's action has succeeded and the window has come to rest.
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
