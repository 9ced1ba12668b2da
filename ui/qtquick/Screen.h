// A screen that is shown or being created.
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

// Main queue only. Creates its item incrementally, to keep the host's loop responsive.
class Screen : public QObject, private QQmlIncubator {
  Q_OBJECT

 public:
  // `model` is the screen's adapter, which becomes a child; `banner` is its part for the configuration.
  Screen(ScreenKind kind, std::shared_ptr<ScreenServices> sdk, QObject* model, ConsentBannerAdapter* banner);
  ~Screen() override;

  ScreenKind kind() const { return kind_; }
  const std::shared_ptr<ScreenServices>& sdk() const { return sdk_; }
  QObject* model() const { return model_; }
  ConsentBannerAdapter* banner() const { return banner_; }
  // Null until created.
  QQuickItem* item() const { return item_; }
  bool contains(const QQuickItem* other) const;

  void createFrom(QQmlComponent& component);
  // Places the created item over the window and focuses it.
  void showIn(QQuickWindow& window);
  // Animates the item out, then deletes the screen.
  void leave();

  // The item that had the focus before, and gets it back.
  QPointer<QQuickItem> formerFocus;

 Q_SIGNALS:
  void created();
  // The window was closed.
  void lostWindow();

 private:
  void setInitialState(QObject* object) override;
  void statusChanged(Status status) override;

  const ScreenKind kind_;
  const std::shared_ptr<ScreenServices> sdk_;
  QObject* const model_;
  ConsentBannerAdapter* const banner_;
  QPointer<QQuickItem> item_;
  std::shared_ptr<void> shown_;  // while visible to the user
};

}  // namespace quillon
