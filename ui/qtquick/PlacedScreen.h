// The screens as QML elements, which an application places in its own pages.
#pragma once

#include <QtQml/qqmlregistration.h>
#include <QQmlEngine>
#include <QQuickItem>
#include <functional>
#include <memory>

#include "platform/ScreenServices.h"
#include "quillon/ConsentSDK.h"
#include "quillon/QtQuick.h"
#include "ui/qtquick/ConsentBannerAdapter.h"

namespace quillon {

// The SDK of an engine's pages. Owned by the engine.
class PageSdk : public QObject {
  Q_OBJECT

 public:
  // Null if the engine has none, with a warning for the element.
  static PageSdk* of(QQmlEngine& engine, QObject& element);

  PageSdk(ConsentSDK& sdk, QtQuickOptions screens, QQmlEngine& engine)
      : QObject(&engine), sdk(sdk), services(sdk.screens()), options(screens) {}

  ConsentSDK& sdk;  // outlives the engine
  const std::shared_ptr<ScreenServices> services;
  const QtQuickOptions options;
};

// Loads once the SDK has a configuration. The page determines the size; the implicit height fits all content.
class PlacedScreen : public QQuickItem {
  Q_OBJECT
  QML_ANONYMOUS

 public:
  using QQuickItem::QQuickItem;
  // Deleted before the model, since its bindings use it.
  ~PlacedScreen() override { delete screen_; }

 Q_SIGNALS:
  // The user has finished here; reason: "accepted", "rejected", "saved" or "closed".
  void done(const QString& reason);

 protected:
  void componentComplete() override;
  void geometryChange(const QRectF& now, const QRectF& before) override;

  // The screen's adapter, and its part for the banner's configuration. Both become children of this item.
  struct Model {
    QObject* adapter;
    ConsentBannerAdapter* banner;
    std::function<void()> load;
    std::function<QString()> reason;  // evaluated when the user has finished
  };
  virtual Model makeModel(std::shared_ptr<ConsentBannerViewModel> banner) = 0;

 private:
  virtual const char* sheet() const = 0;  // the screen's QML type
  // Emitted asynchronously, since the page may delete the item in response.
  void emitDone(const QString& reason) {
    QMetaObject::invokeMethod(this, [this, reason] { Q_EMIT done(reason); }, Qt::QueuedConnection);
  }
  void feed(const PageSdk& sdk, const Model& model);
  void show(const Model& model);

  QQuickItem* screen_ = nullptr;
  std::function<QString()> reason_;
  std::shared_ptr<void> readiness_;
  std::shared_ptr<void> dismissal_;
};

// QML linters resolve the base class by its qualified name only.
class PlacedBanner : public quillon::PlacedScreen {
  Q_OBJECT
  QML_NAMED_ELEMENT(ConsentBanner)

 protected:
  Model makeModel(std::shared_ptr<ConsentBannerViewModel> banner) override;

 private:
  const char* sheet() const override { return "BannerSheet"; }
};

class PlacedPreferenceCenter : public quillon::PlacedScreen {
  Q_OBJECT
  QML_NAMED_ELEMENT(PreferenceCenter)

 protected:
  Model makeModel(std::shared_ptr<ConsentBannerViewModel> banner) override;

 private:
  const char* sheet() const override { return "PreferenceSheet"; }
};

class PlacedSettingsPrompt : public quillon::PlacedScreen {
  Q_OBJECT
  QML_NAMED_ELEMENT(SettingsPrompt)
  // The permission's key; read once, when the element is complete.
  Q_PROPERTY(QString permission MEMBER permission_)

 protected:
  Model makeModel(std::shared_ptr<ConsentBannerViewModel> banner) override;

 private:
  const char* sheet() const override { return "PromptSheet"; }

  QString permission_;
};

}  // namespace quillon
