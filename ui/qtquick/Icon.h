// The icons of our controls.
#pragma once

#include <QtQml/qqmlregistration.h>
#include <QColor>
#include <QQuickPaintedItem>

namespace quillon {

// Line drawings of uniform stroke width on a grid of 24 units; sharp at every size.
class Icon : public QQuickPaintedItem {
  Q_OBJECT
  QML_ELEMENT
  Q_PROPERTY(Shape shape MEMBER shape_ NOTIFY changed)
  Q_PROPERTY(QColor color MEMBER color_ NOTIFY changed)

 public:
  enum Shape { Cross, ChevronDown, ChevronForward, ChevronBackward, Refresh, Check, Lock, Arc, OpenOutside };
  Q_ENUM(Shape)

  explicit Icon(QQuickItem* parent = nullptr);
  void paint(QPainter* painter) override;

 Q_SIGNALS:
  void changed();

 private:
  Shape shape_ = Cross;
  QColor color_ = Qt::black;
};

}  // namespace quillon
