// An application with a window and the SDK's screens over it, driven as a user drives it.
#pragma once

#include <QPointer>
#include <QQuickItem>
#include <QQuickWindow>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "tests/support/World.h"
#include "ui/qtquick/QtScreenPresenter.h"

namespace quillon::test {

enum class Way { mouse, touch, key, assistive };

// The main queue is the test's own thread: it runs within the waits.
class ScreenWorld {
 public:
  explicit ScreenWorld(const QtQuickOptions& options = {.isDark = false, .textScale = 1, .isMotionReduced = true});
  ~ScreenWorld();

  // Serves the document and waits until the SDK is ready.
  void start();
  // False when the condition does not come true within half a minute.
  bool await(const std::function<bool()>& condition);
  // Waits until nothing is under way, neither in the background nor on the main queue.
  void settle();
  // Lets that much of the virtual time pass.
  void advance(std::chrono::milliseconds time);

  // Shows a screen and waits until it is on. The banner's turn comes anew with every call.
  void banner();
  void preferenceCenter();
  void prompt();
  QQuickItem* top() const { return presenter->topItem(); }
  // Whether it is on completely.
  bool isShown() const { return top() && top()->property("shown").toDouble() == 1; }
  // Waits until a screen with that control is on.
  void screenWith(const std::string& text);
  // Waits until the last screen has left.
  bool isGone();

  // The visible items of the top-most screen.
  std::vector<QQuickItem*> items() const;
  // The visible control with that text on the top-most screen; null when there is none.
  QQuickItem* control(const std::string& text) const;
  // A test fails here when there is none.
  void use(const std::string& text, Way way = Way::mouse);
  void tap(QQuickItem& item, Way way = Way::mouse);
  void key(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier);

  std::string status(int purpose) { return world.text(std::to_string(purpose)).value_or("none"); }

  boost::json::object document = validConfiguration();
  std::string language = "en";
  World world;
  std::shared_ptr<QtScreenPresenter> presenter;
  std::unique_ptr<QQuickWindow> window;
  QQuickItem* hostControl = nullptr;  // has the focus before a screen comes
};

// Of all that lies below, itself included.
std::vector<QQuickItem*> itemsBelow(QQuickItem* item);

}  // namespace quillon::test
