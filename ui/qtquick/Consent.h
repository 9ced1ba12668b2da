// The SDK's API for QML pages.
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

// Reports "no" while the engine has no SDK.
class Consent : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_SINGLETON
  // "ready", "unavailable" or "fetching".
  Q_PROPERTY(QString status READ status NOTIFY statusChanged)
  Q_PROPERTY(bool ready READ isReady NOTIFY statusChanged)
  Q_PROPERTY(bool bannerDue READ isBannerDue NOTIFY bannerDueChanged)
  // The screens' language, such as "de".
  Q_PROPERTY(QString language READ language NOTIFY statusChanged)

 public:
  static Consent* create(QQmlEngine* engine, QJSEngine*) { return new Consent(*engine); }

  // Whether the page may act on the purpose, or on the permission with that key, now.
  Q_INVOKABLE bool isAllowed(qint64 purposeId) const;
  Q_INVOKABLE bool isPermissionAllowed(const QString& key) const;

  Q_INVOKABLE void presentBanner();
  Q_INVOKABLE void presentPreferenceCenter();
  // Opens the web view if the application or the configuration allows the URL.
  Q_INVOKABLE void openLink(const QString& link);
  // Calls back with (document, error), one of which is empty. The document is a signed receipt of the decisions on the
  // purposes, or on all if none is given.
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

  PageSdk* const page_;  // belongs to the engine, like this object; the SDK outlives both
  bool isBannerDue_ = false;
  std::shared_ptr<void> readiness_;
  std::vector<Listening> changes_;
};

}  // namespace quillon
