#include "ui/qtquick/AccessibleScope.h"

#include <QAccessible>
#include <QAccessibleObject>
#include <QQuickWindow>

namespace quillon {
namespace {

// The accessibility node of a scope. Qt's nodes of items support neither a modal state nor hiding their children.
class ScopeNode : public QAccessibleObject {
 public:
  explicit ScopeNode(AccessibleScope* scope) : QAccessibleObject(scope) {}

  QAccessibleInterface* parent() const override {
    const QQuickWindow* window = scope().window();
    for (QQuickItem* item = scope().parentItem(); item && window && item != window->contentItem();
         item = item->parentItem()) {
      if (auto* node = QAccessible::queryAccessibleInterface(item)) return node;
    }
    return QAccessible::queryAccessibleInterface(scope().window());
  }
  int childCount() const override { return static_cast<int>(children().size()); }
  QAccessibleInterface* child(int index) const override { return children().value(index); }
  int indexOfChild(const QAccessibleInterface* child) const override {
    return static_cast<int>(children().indexOf(child));
  }

  QString text(QAccessible::Text kind) const override {
    return kind == QAccessible::Name ? scope().title() : QString();
  }
  QRect rect() const override {
    const QQuickWindow* window = scope().window();
    if (!window) return {};
    const QRect place = scope().mapRectToScene(scope().boundingRect()).toAlignedRect();
    return {window->mapToGlobal(place.topLeft()), place.size()};
  }
  QAccessible::Role role() const override { return scope().isModal() ? QAccessible::Dialog : QAccessible::Grouping; }
  QAccessible::State state() const override {
    QAccessible::State state;
    const bool isShown = scope().isVisible() && !scope().isCovered();
    state.invisible = !isShown;
    state.disabled = !scope().isEnabled();
    state.modal = scope().isModal() && isShown;
    state.active = state.modal;
    state.focusable = scope().isModal();
    state.focused = scope().hasActiveFocus();
    return state;
  }

 private:
  AccessibleScope& scope() const { return *static_cast<AccessibleScope*>(object()); }

  QList<QAccessibleInterface*> children() const {
    QList<QAccessibleInterface*> nodes;
    if (!scope().isCovered()) addNodesBelow(scope(), nodes);
    return nodes;
  }
  // Items without a node are skipped; their children are not.
  static void addNodesBelow(const QQuickItem& item, QList<QAccessibleInterface*>& nodes) {
    for (QQuickItem* child : item.childItems()) {
      if (auto* node = QAccessible::queryAccessibleInterface(child)) {
        nodes.push_back(node);
      } else {
        addNodesBelow(*child, nodes);
      }
    }
  }
};

QAccessibleInterface* nodeOf(const QString& /*className*/, QObject* object) {
  auto* scope = qobject_cast<AccessibleScope*>(object);
  return scope ? new ScopeNode(scope) : nullptr;
}

}  // namespace

AccessibleScope::AccessibleScope(QQuickItem* parent) : QQuickItem(parent) {
  static const bool isKnown = (QAccessible::installFactory(nodeOf), true);
  Q_UNUSED(isKnown)
  connect(this, &AccessibleScope::titleChanged, this, [this] {
    if (!QAccessible::isActive()) return;
    QAccessibleEvent event(this, QAccessible::NameChanged);
    QAccessible::updateAccessibility(&event);
  });
}

void AccessibleScope::setCovered(bool isCovered) {
  if (isCovered == isCovered_) return;
  isCovered_ = isCovered;
  Q_EMIT isCoveredChanged();
  if (!QAccessible::isActive()) return;
  QAccessibleEvent event(this, isCovered ? QAccessible::ObjectHide : QAccessible::ObjectShow);
  QAccessible::updateAccessibility(&event);
}

}  // namespace quillon
