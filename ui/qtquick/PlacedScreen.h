// The screens as elements that a page of the application's own places in its layout.
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

// The SDK that the pages of an engine are about. Belongs to the engine.
class PageSdk : public QObject {
  Q_OBJECT

 public:
  // Null, with a warning on behalf of the element, when the engine has none.
  static PageSdk* of(QQmlEngine& engine, QObject& element);

  PageSdk(ConsentSDK& sdk, QtQuickOptions screens, QQmlEngine& engine)
      : QObject(&engine), sdk(sdk), services(sdk.screens()), options(screens) {}

  ConsentSDK& sdk;  // outlives the engine
  const std::shared_ptr<ScreenServices> services;
  const QtQuickOptions options;
};

// Loads as soon as the SDK has a configuration. As large as the page wants it, by itself as high as all that it shows.
class PlacedScreen : public QQuickItem {
  Q_OBJECT
  QML_ANONYMOUS

 public:
  using QQuickItem::QQuickItem;
  // Before the model, which its bindings read.
  ~PlacedScreen() override { delete screen_; }

 Q_SIGNALS:
  // The user has done here what there was to do; how: "accepted", "rejected", "saved" or "closed".
  void done(const QString& reason);

 protected:
  void componentComplete() override;
  void geometryChange(const QRectF& now, const QRectF& before) override;

  // What the screen shows, and the part of it that knows the banner's configuration. Both become the item's own.
  struct Model {
    QObject* adapter;
    ConsentBannerAdapter* banner;
    std::function<void()> load;
    std::function<QString()> reason;  // of the end, at the end
  };
  virtual Model makeModel(std::shared_ptr<ConsentBannerViewModel> banner) = 0;

 private:
  virtual const char* sheet() const = 0;  // its QML type
  // In a turn of the main loop of its own, since the page may take the item away.
  void sayDone(const QString& reason) {
    QMetaObject::invokeMethod(this, [this, reason] { Q_EMIT done(reason); }, Qt::QueuedConnection);
  }
  void feed(const PageSdk& sdk, const Model& model);
  void show(const Model& model);

  QQuickItem* screen_ = nullptr;
  std::function<QString()> reason_;
  std::shared_ptr<void> readiness_;
  std::shared_ptr<void> dismissal_;
};

// Linters find a base class by its whole name alone.
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
  // The key of the permission that it is about; read once, when the element is complete.
  Q_PROPERTY(QString permission MEMBER permission_)

 protected:
  Model makeModel(std::shared_ptr<ConsentBannerViewModel> banner) override;

 private:
  const char* sheet() const override { return "PromptSheet"; }

  QString permission_;
};

}  // namespace quillon
