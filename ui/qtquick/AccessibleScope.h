// A subtree that can be hidden from assistive technology.
#pragma once

#include <QtQml/qqmlregistration.h>
#include <QQuickItem>
#include <QString>

namespace quillon {

// When covered, it hides its children from assistive technology; when modal, it is a dialog. Requires
// `Accessible.role`, of any value, to be in the accessibility tree.
class AccessibleScope : public QQuickItem {
  Q_OBJECT
  QML_ELEMENT
  Q_PROPERTY(QString title MEMBER title_ NOTIFY titleChanged)
  Q_PROPERTY(bool isModal MEMBER isModal_ NOTIFY isModalChanged)
  Q_PROPERTY(bool isCovered READ isCovered WRITE setCovered NOTIFY isCoveredChanged)

 public:
  explicit AccessibleScope(QQuickItem* parent = nullptr);

  const QString& title() const { return title_; }
  bool isModal() const { return isModal_; }
  bool isCovered() const { return isCovered_; }
  void setCovered(bool isCovered);

 Q_SIGNALS:
  void titleChanged();
  void isModalChanged();
  void isCoveredChanged();

 private:
  QString title_;
  bool isModal_ = false;
  bool isCovered_ = false;
};

}  // namespace quillon
