// Purposes and permissions as QML elements with live state.
#pragma once

#include <QtQml/qqmlregistration.h>
#include <QObject>
#include <QQmlParserStatus>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "quillon/ConsentSDK.h"

namespace quillon {

class PageSdk;

// The base of the elements below. Follows the SDK once the page is complete.
class FollowedConsent : public QObject, public QQmlParserStatus {
  Q_OBJECT
  QML_ANONYMOUS
  Q_INTERFACES(QQmlParserStatus)
  // Whether the page may act now.
  Q_PROPERTY(bool allowed READ isAllowed NOTIFY changed)
  // "granted", "declined", "withDrawn" or "notDetermined"; for whether the page may act, use `allowed`.
  Q_PROPERTY(QString status READ status NOTIFY changed)
  // In the user's language; empty while there is no configuration.
  Q_PROPERTY(QString name READ name NOTIFY changed)
  Q_PROPERTY(QString explanation READ explanation NOTIFY changed)

 public:
  void classBegin() override {}
  void componentComplete() override;

  bool isAllowed() const { return isAllowed_; }
  const QString& status() const { return status_; }
  const QString& name() const { return name_; }
  const QString& explanation() const { return explanation_; }

 Q_SIGNALS:
  void changed();

 protected:
  // Refresh everything, or only what decisions change.
  void refresh();
  void refreshAnswer();
  void describe(const QString& name, const QString& explanation);
  ConsentSDK* sdk() const;
  QString textOf(const std::optional<LocalizedText>& text) const;

 private:
  virtual void follow(std::vector<Listening>& changes) = 0;
  virtual bool isAllowedNow() const = 0;
  virtual ConsentStatus statusNow() const = 0;
  virtual void askForTexts() = 0;

  PageSdk* page_ = nullptr;  // owned by the engine, like this object
  bool isAllowed_ = false;
  QString status_;
  QString name_;
  QString explanation_;
  std::shared_ptr<void> readiness_;
  std::vector<Listening> changes_;
};

// QML linters resolve the base class by its qualified name only.
class PurposeElement : public quillon::FollowedConsent {
  Q_OBJECT
  QML_NAMED_ELEMENT(PurposeConsent)
  Q_PROPERTY(double purposeId READ purposeId WRITE setPurposeId NOTIFY purposeIdChanged REQUIRED)

 public:
  double purposeId() const { return purposeId_; }
  void setPurposeId(double purposeId);

  // Stores the user's choice; false on failure.
  Q_INVOKABLE bool set(bool isGranted);

 Q_SIGNALS:
  void purposeIdChanged();

 private:
  void follow(std::vector<Listening>& changes) override;
  bool isAllowedNow() const override;
  ConsentStatus statusNow() const override;
  void askForTexts() override;
  std::optional<std::int64_t> id() const;

  double purposeId_ = 0;  // QML has no 64-bit integers
};

class PermissionElement : public quillon::FollowedConsent {
  Q_OBJECT
  QML_NAMED_ELEMENT(PermissionConsent)
  // A key such as "NSCameraUsageDescription".
  Q_PROPERTY(QString permission READ permission WRITE setPermission NOTIFY permissionChanged REQUIRED)

 public:
  const QString& permission() const { return permission_; }
  void setPermission(const QString& permission);

 Q_SIGNALS:
  void permissionChanged();

 private:
  void follow(std::vector<Listening>& changes) override;
  bool isAllowedNow() const override;
  ConsentStatus statusNow() const override;
  void askForTexts() override;

  QString permission_;
};

// Emits allowed() and denied() alternately, first allowed() once the purpose is allowed and the page complete.
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
  double purposeId_ = 0;
  std::optional<Listening> gate_;
};

}  // namespace quillon
