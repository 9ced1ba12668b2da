// One permission of the preference centre for QML.
#pragma once

#include <QtQml/qqmlregistration.h>
#include <QString>
#include <optional>

#include "quillon/MainConfiguration.h"
#include "ui/qtquick/ConsentBannerAdapter.h"
#include "ui/qtquick/RichTextAdapter.h"

namespace quillon {

class PermissionAdapter : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("made for each permission")
  // The group's heading for its first permission; empty for the others.
  Q_PROPERTY(QString heading MEMBER heading_ CONSTANT)
  Q_PROPERTY(QString name MEMBER name_ CONSTANT)
  Q_PROPERTY(quillon::RichTextAdapter* description MEMBER description_ CONSTANT)
  Q_PROPERTY(bool isGranted READ isGranted NOTIFY changed)
  Q_PROPERTY(QString state READ state NOTIFY changed)
  // Name and state, for screen readers.
  Q_PROPERTY(QString summary READ summary NOTIFY changed)
  // Whether to offer opening the system settings.
  Q_PROPERTY(bool canUpdate MEMBER canUpdate_ NOTIFY changed)
  Q_PROPERTY(QString updateName READ updateName CONSTANT)

 public:
  PermissionAdapter(const AppPermission& permission, QString heading, const ConsentBannerAdapter& banner,
                    QObject* parent);

  const std::optional<VantariKey>& key() const { return key_; }
  void set(std::optional<ConsentStatus> status, bool canUpdate);

  bool isGranted() const { return status_ == ConsentStatus::granted; }
  QString state() const { return banner_.label(isGranted() ? Label::allowed : Label::notAllowed); }
  QString summary() const { return banner_.joined(Label::partOf, name_, state()); }
  QString updateName() const { return banner_.joined(Label::partOf, banner_.label(Label::update), name_); }

 Q_SIGNALS:
  void changed();

 private:
  const ConsentBannerAdapter& banner_;
  const std::optional<VantariKey> key_;
  std::optional<ConsentStatus> status_;
  QString heading_;
  QString name_;
  RichTextAdapter* description_;
  bool canUpdate_ = false;
};

}  // namespace quillon
