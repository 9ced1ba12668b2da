// Shows the screens over the windows of a Qt Quick application.
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

// For the main thread only, but it may be released anywhere.
class QtScreenPresenter : public QObject, public ScreenPresenter {
  Q_OBJECT

 public:
  static std::shared_ptr<QtScreenPresenter> make(QtQuickOptions options);
  ~QtScreenPresenter() override;

  // Compiles the screens and finds fonts ahead, without holding the main loop, so that the first one appears at once.
  void prepare();

  void presentBanner(Services sdk) override;
  void presentPreferenceCenter(Services sdk) override;
  void presentSettingsPrompt(Services sdk, const VantariKey& permission) override;
  void presentWebView(Services sdk, const std::string& link) override;
  void dismissTopMost() override;
  void dismissBanner(Services sdk) override;
  void openSystemSettings() override;

  // The item of the top-most screen; null when there is none or it is still being made.
  QQuickItem* topItem() const { return stack_.empty() ? nullptr : stack_.back()->item(); }
  // While cards of the screens are still being made, a few in each turn of the main loop.
  bool isFilling() const { return engine_ && engine_->incubationController()->incubatingObjectCount() > 0; }

 protected:
  // Keeps the Tab key within the top-most screen.
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  explicit QtScreenPresenter(QtQuickOptions options);

  bool isShown(ScreenKind kind, const Services& sdk) const;
  void present(std::unique_ptr<Screen> made);
  QQmlComponent& component(ScreenKind kind);
  void show(Screen* screen);
  // Takes the screen off the stack.
  void dismiss(Screen* screen);
  void styleAfterTop();
  // Takes from the keyboard and from assistive technology what lies below the top-most screen of the window.
  void coverBelowTop(QQuickWindow& window);
  QQuickWindow* hostWindow();
  void closeOwnWindow();
  void clear();

  const QtQuickOptions options_;
  std::unique_ptr<QQmlEngine> engine_;
  std::map<ScreenKind, std::unique_ptr<QQmlComponent>> components_;
  std::vector<Screen*> stack_;               // the top-most last; each deletes itself after it left
  std::unique_ptr<QQuickWindow> ownWindow_;  // in an application that has none of Qt Quick
};

}  // namespace quillon
