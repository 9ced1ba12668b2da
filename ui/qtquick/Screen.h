// One screen that is shown, or about to be.
#pragma once

#include <QPointer>
#include <QQmlComponent>
#include <QQmlIncubator>
#include <QQuickItem>
#include <functional>
#include <memory>
#include <optional>

#include "platform/ScreenServices.h"
#include "ui/qtquick/ConsentBannerAdapter.h"

namespace quillon {

// For the main queue only. The item is made bit by bit, so that the host's loop is not held.
class Screen : public QObject, private QQmlIncubator {
  Q_OBJECT

 public:
  // The model is the screen's adapter, which becomes its own; `banner` is the part of it that knows the configuration.
  Screen(ScreenKind kind, std::shared_ptr<ScreenServices> sdk, QObject* model, ConsentBannerAdapter* banner);
  ~Screen() override;

  ScreenKind kind() const { return kind_; }
  const std::shared_ptr<ScreenServices>& sdk() const { return sdk_; }
  QObject* model() const { return model_; }
  ConsentBannerAdapter* banner() const { return banner_; }
  // Null until it is made.
  QQuickItem* item() const { return item_; }
  bool contains(const QQuickItem* other) const;

  void createFrom(QQmlComponent& component);
  // Places the finished item over the window and gives it the focus.
  void showIn(QQuickWindow& window);
  // The item leaves, and then all of it goes.
  void leave();

  // What had the focus before; it is given back.
  QPointer<QQuickItem> formerFocus;

 Q_SIGNALS:
  void created();
  // The window went away underneath.
  void lostWindow();

 private:
  void setInitialState(QObject* object) override;
  void statusChanged(Status status) override;

  const ScreenKind kind_;
  const std::shared_ptr<ScreenServices> sdk_;
  QObject* const model_;
  ConsentBannerAdapter* const banner_;
  QPointer<QQuickItem> item_;
  std::shared_ptr<void> shown_;  // while the user sees it
};

}  // namespace quillon
