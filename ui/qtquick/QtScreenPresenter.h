// Presents screens over the windows of a Qt Quick application.
#pragma once

#include <QQmlComponent>
#include <QQmlEngine>
#include <QQmlIncubationController>
#include <QQuickWindow>
#include <map>
#include <memory>
#include <vector>

#include "platform/ScreenPresenter.h"
#include "quillon/QtQuick.h"
#include "ui/qtquick/Screen.h"
#include "ui/qtquick/Style.h"

namespace quillon {

// Main thread only, but may be released on any thread.
class QtScreenPresenter : public QObject, public ScreenPresenter {
  Q_OBJECT

 public:
  static std::shared_ptr<QtScreenPresenter> make(QtQuickOptions options);
  ~QtScreenPresenter() override;

  // Compiles screens and loads fonts in advance, without blocking the main loop, so that the first screen appears
  // immediately.
  void prepare();

  void presentBanner(Services sdk) override;
  void presentPreferenceCenter(Services sdk) override;
  void presentSettingsPrompt(Services sdk, const VantariKey& permission) override;
  void presentWebView(Services sdk, const std::string& link) override;
  void dismissTopMost() override;
  void dismissBanner(Services sdk) override;
  void openSystemSettings() override;

  // The top-most screen's item; null if there is none or it is being created.
  QQuickItem* topItem() const { return stack_.empty() ? nullptr : stack_.back()->item(); }
  // Whether the screens' cards are still being created, a few per turn of the main loop.
  bool isFilling() const { return engine_ && engine_->incubationController()->incubatingObjectCount() > 0; }

 protected:
  // Keeps keyboard focus within the top-most screen.
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  explicit QtScreenPresenter(QtQuickOptions options);

  bool isShown(ScreenKind kind, const Services& sdk) const;
  void present(std::unique_ptr<Screen> made);
  QQmlComponent& component(ScreenKind kind);
  void show(Screen* screen);
  // Removes the screen from the stack.
  void dismiss(Screen* screen);
  void styleAfterTop();
  // Disables everything below the window's top-most screen for keyboard and assistive technology.
  void coverBelowTop(QQuickWindow& window);
  QQuickWindow* hostWindow();
  void closeOwnWindow();
  void clear();

  const QtQuickOptions options_;
  std::unique_ptr<QQmlEngine> engine_;
  std::map<ScreenKind, std::unique_ptr<QQmlComponent>> components_;
  std::vector<Screen*> stack_;               // top-most last; screens delete themselves after closing
  std::unique_ptr<QQuickWindow> ownWindow_;  // for applications without a Qt Quick window
};

}  // namespace quillon
