#include "ui/qtquick/Icon.h"

#include <QPainter>
#include <QPainterPath>

namespace quillon {
namespace {

QPainterPath line(std::initializer_list<QPointF> points) {
  QPainterPath path(*points.begin());
  for (const QPointF& point : points) path.lineTo(point);
  return path;
}

QPainterPath pathOf(Icon::Shape shape) {
  QPainterPath path;
  switch (shape) {
    case Icon::Cross:
      path = line({{6, 6}, {18, 18}});
      path.addPath(line({{18, 6}, {6, 18}}));
      break;
    case Icon::ChevronDown:
      path = line({{6, 9}, {12, 15}, {18, 9}});
      break;
    case Icon::ChevronForward:
      path = line({{9, 6}, {15, 12}, {9, 18}});
      break;
    case Icon::ChevronBackward:
      path = line({{15, 6}, {9, 12}, {15, 18}});
      break;
    case Icon::Refresh:
      path.arcMoveTo(5, 5, 14, 14, 30);
      path.arcTo(5, 5, 14, 14, 30, 300);
      path.addPath(line({{18.5, 4.5}, {18.5, 8.7}, {14.3, 8.7}}));
      break;
    case Icon::Check:
      path = line({{5, 12.5}, {10, 17.5}, {19, 7}});
      break;
    case Icon::Lock:
      path.addRoundedRect(5.5, 11, 13, 9, 2, 2);
      path.moveTo(8.5, 11);
      path.lineTo(8.5, 8);
      path.arcTo(8.5, 4.5, 7, 7, 180, -180);
      path.lineTo(15.5, 11);
      break;
    case Icon::Arc:
      path.arcMoveTo(3, 3, 18, 18, 90);
      path.arcTo(3, 3, 18, 18, 90, -270);
      break;
    case Icon::OpenOutside:
      path = line({{18, 13.5}, {18, 19}, {5, 19}, {5, 6}, {10.5, 6}});
      path.addPath(line({{14, 5}, {19, 5}, {19, 10}}));
      path.addPath(line({{19, 5}, {11, 13}}));
      break;
  }
  return path;
}

}  // namespace

Icon::Icon(QQuickItem* parent) : QQuickPaintedItem(parent) {
  setAntialiasing(true);
  connect(this, &Icon::changed, this, [this] { update(); });
}

void Icon::paint(QPainter* painter) {
  const double unit = qMin(width(), height()) / 24;
  painter->setRenderHint(QPainter::Antialiasing);
  painter->translate(width() / 2, height() / 2);
  painter->scale(unit, unit);
  painter->translate(-12, -12);
  painter->setPen(QPen(color_, 2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  painter->drawPath(pathOf(shape_));
}

}  // namespace quillon
