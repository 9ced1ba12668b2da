// A part of what assistive technology meets that can be taken out of it.
#pragma once

#include <QtQml/qqmlregistration.h>
#include <QQuickItem>
#include <QString>

namespace quillon {

// Covered, it shows assistive technology nothing of what it holds. Modal, it is a dialog. The item also needs
// `Accessible.role`, of any value, to be met at all.
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
