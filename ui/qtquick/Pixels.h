// Lengths that end on a pixel of the screen, also where a device-independent pixel is 1.25, 1.5 or 1.75 of them.
#pragma once

#include <QtQml/qqmlregistration.h>
#include <QObject>
#include <algorithm>
#include <cmath>

namespace quillon {

// Lengths are in device-independent pixels; ratio is the number of the screen's pixels in one.
class Pixels : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_SINGLETON

 public:
  using QObject::QObject;

  Q_INVOKABLE static double up(double length, double ratio) { return std::ceil(length * ratio - kRounding) / ratio; }
  Q_INVOKABLE static double down(double length, double ratio) { return std::floor(length * ratio + kRounding) / ratio; }
  // The width of a line, at least one pixel of the screen.
  Q_INVOKABLE static double line(double width, double ratio) { return std::max(down(width, ratio), 1 / ratio); }

 private:
  // Sums of such lengths are off by less, in pixels of the screen.
  static constexpr double kRounding = 0.01;
};

}  // namespace quillon
