#include "ui/qtquick/Consent.h"

#include <QPointer>
#include <utility>

#include "ui/qtquick/PlacedScreen.h"

namespace quillon {

Consent::Consent(QQmlEngine& engine) : QObject(&engine), page_(PageSdk::of(engine, *this)) {
  if (!page_) return;
  readiness_ = page_->services->followStatus([this](SDKStatus) {
    Q_EMIT statusChanged();
    askForBanner();
  });
  changes_.push_back(page_->sdk.listenToConsents([this](const Decision&) { askForBanner(); }));
  changes_.push_back(page_->sdk.listenToScreens([this](const ScreenEvent&) { askForBanner(); }));
  changes_.push_back(page_->sdk.listenToBannerDue([this](const BannerExplanation&) { askForBanner(); }));
  askForBanner();
}

bool Consent::isAllowed(qint64 purposeId) const {
  return page_ && page_->sdk.isAllowed(purposeId);
}

bool Consent::isPermissionAllowed(const QString& key) const {
  return page_ && page_->sdk.isAllowed(VantariKey(key.toStdString()));
}

void Consent::presentBanner() {
  if (page_) page_->sdk.presentBanner();
}

void Consent::presentPreferenceCenter() {
  if (page_) page_->sdk.presentPreferenceCenter();
}

void Consent::openLink(const QString& link) {
  if (page_) page_->sdk.openLink(link.toStdString());
}

void Consent::receipt(const QList<qint64>& purposes, const QJSValue& callback) {
  const auto tell = [page = QPointer(this), callback](const QString& document, const QString& error) {
    if (page) callback.call({document, error});  // otherwise the callback's engine is gone
  };
  if (!page_) return tell({}, QStringLiteral("the pages have no SDK"));
  page_->sdk.receipt({purposes.begin(), purposes.end()}, [tell](const ConsentSDKResult<std::string>& receipt) {
    const auto* const document = receipt.value();
    const auto* const error = receipt.error();
    tell(document ? QString::fromStdString(*document) : QString(),
         error ? QString::fromStdString(error->error) : QString());
  });
}

QString Consent::status() const {
  switch (page_ ? page_->sdk.getStatus() : SDKStatus::unavailable) {
    case SDKStatus::ready:
      return QStringLiteral("ready");
    case SDKStatus::fetching:
      return QStringLiteral("fetching");
    case SDKStatus::unavailable:
      break;
  }
  return QStringLiteral("unavailable");
}

bool Consent::isReady() const {
  return page_ && page_->sdk.getStatus() == SDKStatus::ready;
}

QString Consent::language() const {
  return page_ ? QString::fromStdString(page_->services->language()) : QString();
}

void Consent::askForBanner() {
  const bool isDue = page_->sdk.explainBanner().isDue;
  if (std::exchange(isBannerDue_, isDue) != isDue) Q_EMIT bannerDueChanged();
}

}  // namespace quillon
