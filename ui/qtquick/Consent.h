// What pages ask of the SDK.
#pragma once

#include <QtQml/qqmlregistration.h>
#include <QQmlEngine>
#include <QQmlParserStatus>
#include <optional>

#include "quillon/ConsentSDK.h"

namespace quillon {

// Answers "no" while the engine has no SDK.
class Consent : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_SINGLETON

 public:
  static Consent* create(QQmlEngine* engine, QJSEngine*) { return new Consent(*engine); }

  // Whether a page may act on the purpose, or the permission of that key, at this moment.
  Q_INVOKABLE bool isAllowed(qint64 purposeId) const { return sdk_ && sdk_->isAllowed(purposeId); }
  Q_INVOKABLE bool isPermissionAllowed(const QString& key) const {
    return sdk_ && sdk_->isAllowed(VantariKey(key.toStdString()));
  }

 private:
  explicit Consent(QQmlEngine& engine);

  const ConsentSDK* const sdk_;  // outlives the engine
};

// Emits in turn while it lives, beginning with allowed() as soon as the purpose is, and after the page is complete.
class ConsentGate : public QObject, public QQmlParserStatus {
  Q_OBJECT
  QML_ELEMENT
  Q_INTERFACES(QQmlParserStatus)
  Q_PROPERTY(double purposeId MEMBER purposeId_ REQUIRED)

 public:
  void classBegin() override {}
  void componentComplete() override;

 Q_SIGNALS:
  void allowed();
  void denied();

 private:
  double purposeId_ = 0;  // QML has no larger integers
  std::optional<Listening> gate_;
};

}  // namespace quillon
