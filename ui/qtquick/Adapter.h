// The base of adapters between view models and QML screens.
#pragma once

#include <QtQml/qqmlregistration.h>
#include <QMetaObject>
#include <QObject>
#include <QVariantList>
#include <utility>
#include <vector>

#include "ui/Common/Published.h"

namespace quillon {

// Objects as a repeater's model.
template <class Object>
QVariantList listOf(const std::vector<Object*>& objects) {
  QVariantList list;
  for (Object* object : objects) list.push_back(QVariant::fromValue(object));
  return list;
}

// Follows view models. They announce changes in advance, so the adapter reads the new state in a later turn of the main
// loop, once for all changes until then.
class Adapter : public QObject {
  Q_OBJECT
  QML_ANONYMOUS

 public:
  using QObject::QObject;

 Q_SIGNALS:
  void changed();

 protected:
  template <class Value>
  void follow(Published<Value>& property) {
    observations_.push_back(property.observe([this](const Value&) { scheduleRefresh(); }));
  }

  // Reads the view models' state; changed() is emitted afterwards.
  virtual void refresh() {}

 private:
  void scheduleRefresh() {
    if (std::exchange(isRefreshDue_, true)) return;
    QMetaObject::invokeMethod(
        this,
        [this] {
          isRefreshDue_ = false;
          refresh();
          Q_EMIT changed();
        },
        Qt::QueuedConnection);
  }

  std::vector<Observation> observations_;
  bool isRefreshDue_ = false;
};

}  // namespace quillon
