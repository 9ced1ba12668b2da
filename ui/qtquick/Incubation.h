// Creates QML items incrementally.
#pragma once

#include <QObject>
#include <QQmlIncubationController>
#include <QTimerEvent>

namespace quillon {

// Returns to the main loop between portions.
class Incubation : public QObject, public QQmlIncubationController {
 public:
  using QObject::QObject;

 protected:
  void incubatingObjectCountChanged(int count) override {
    if (count > 0 && timer_ == 0) timer_ = startTimer(0);
    if (count == 0 && timer_ != 0) {
      killTimer(timer_);
      timer_ = 0;
    }
  }
  void timerEvent(QTimerEvent* /*event*/) override {
    constexpr int portionMilliseconds = 2;
    incubateFor(portionMilliseconds);
  }

 private:
  int timer_ = 0;
};

}  // namespace quillon
