#include "ui/qtquick/Screen.h"

#include <QQmlContext>
#include <QQmlEngine>
#include <QQmlProperty>
#include <QQuickWindow>

namespace quillon {

Screen::Screen(ScreenKind kind, std::shared_ptr<ScreenServices> sdk, QObject* model, ConsentBannerAdapter* banner)
    : kind_(kind), sdk_(std::move(sdk)), model_(model), banner_(banner) {
  model_->setParent(this);
}

Screen::~Screen() {
  QQmlIncubator::clear();
  // Deleted before the model, since its bindings use it.
  delete item_;
}

bool Screen::contains(const QQuickItem* other) const {
  return item_ && other && (item_ == other || item_->isAncestorOf(other));
}

void Screen::createFrom(QQmlComponent& component) {
  setInitialProperties({{"model", QVariant::fromValue(model_)}});
  component.create(*this);
}

void Screen::setInitialState(QObject* object) {
  item_ = qobject_cast<QQuickItem*>(object);
  QQmlEngine::setObjectOwnership(object, QQmlEngine::CppOwnership);
}

void Screen::statusChanged(Status status) {
  if (status == Ready) Q_EMIT created();
}

void Screen::showIn(QQuickWindow& window) {
  formerFocus = window.activeFocusItem();
  item_->setParentItem(window.contentItem());
  connect(item_, &QQuickItem::windowChanged, this, [this](const QQuickWindow* now) {
    if (!now) Q_EMIT lostWindow();
  });
  QMetaObject::invokeMethod(item_, "enter");
  shown_ = sdk_->shown(kind_);
}

void Screen::leave() {
  shown_.reset();
  if (!item_ || !item_->window() || !item_->window()->isVisible()) {
    deleteLater();
    return;
  }
  const bool hadFocus = item_->hasActiveFocus();
  connect(item_, &QQuickItem::windowChanged, this, [this](const QQuickWindow* now) {
    if (!now) deleteLater();
  });
  // A signal declared in QML.
  connect(item_, SIGNAL(gone()), this, SLOT(deleteLater()));
  QMetaObject::invokeMethod(item_, "leave");
  if (hadFocus && formerFocus) formerFocus->forceActiveFocus(Qt::PopupFocusReason);
}

}  // namespace quillon
