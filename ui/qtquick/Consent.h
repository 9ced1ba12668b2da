// The SDK, for pages.
#pragma once

#include <QtQml/qqmlregistration.h>
#include <QJSEngine>
#include <QList>
#include <QQmlEngine>
#include <memory>
#include <vector>

#include "quillon/ConsentSDK.h"

namespace quillon {

class PageSdk;

// Answers "no" while the engine has no SDK.
class Consent : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_SINGLETON
  // "ready", "unavailable" or "fetching".
  Q_PROPERTY(QString status READ status NOTIFY statusChanged)
  Q_PROPERTY(bool ready READ isReady NOTIFY statusChanged)
  Q_PROPERTY(bool bannerDue READ isBannerDue NOTIFY bannerDueChanged)
  // In which the screens speak, such as "de".
  Q_PROPERTY(QString language READ language NOTIFY statusChanged)

 public:
  static Consent* create(QQmlEngine* engine, QJSEngine*) { return new Consent(*engine); }

  // Whether a page may act on the purpose, or the permission of that key, at this moment.
  Q_INVOKABLE bool isAllowed(qint64 purposeId) const;
  Q_INVOKABLE bool isPermissionAllowed(const QString& key) const;

  Q_INVOKABLE void presentBanner();
  Q_INVOKABLE void presentPreferenceCenter();
  // In the web view, if the configuration or the application allows the address.
  Q_INVOKABLE void openLink(const QString& link);
  // Calls with a signed receipt of the decisions on the purposes, or on all of none is named, and with why there is
  // none; one of both is empty.
  Q_INVOKABLE void receipt(const QList<qint64>& purposes, const QJSValue& callback);

  QString status() const;
  bool isReady() const;
  bool isBannerDue() const { return isBannerDue_; }
  QString language() const;

 Q_SIGNALS:
  void statusChanged();
  void bannerDueChanged();

 private:
  explicit Consent(QQmlEngine& engine);
  void askForBanner();

  PageSdk* const page_;  // the SDK outlives the engine, which this belongs to
  bool isBannerDue_ = false;
  std::shared_ptr<void> readiness_;
  std::vector<Listening> changes_;
};

}  // namespace quillon
