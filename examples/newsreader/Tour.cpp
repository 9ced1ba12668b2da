#include "Tour.h"

#include <QAccessible>
#include <chrono>
#include <utility>

namespace {

constexpr std::chrono::milliseconds tick(150);
constexpr int mostTicks = 200;  // 30 seconds per step

}  // namespace

Tour::Tour(QQuickWindow* window, quillon::ConsentSDK& sdk, QString folder, bool hasWebView)
    : window_(window), folder_(std::move(folder)) {
  QAccessible::setActive(true);
  const auto seen = [this](const char* name) { return [this, name] { return isShown(name); }; };
  const auto pressed = [this](const char* name) { return [this, name] { return press(name); }; };
  steps_ = {
      {"banner", seen("Accept all")},
      {"preferences", pressed("Choose for yourself")},
      {"switched", pressed("Audience measurement")},
      {"purpose", pressed("Details, Essential services")},
      {"permissions", pressed("Permissions")},
      {"prompt", pressed("Update, Camera")},
      {"after-prompt", pressed("Not now")},
      {"news", pressed("Save Changes")},
  };
  if (hasWebView) {
    // The browser needs longer to start than a picture must stay unchanged.
    steps_.push_back({"refused-link", [this, &sdk, isOpened = false]() mutable {
                        if (!std::exchange(isOpened, true)) sdk.openLink("https://elsewhere.example/");
                        return isShown("This page is blocked");
                      }});
  }
  connect(&tick_, &QTimer::timeout, this, &Tour::proceed);
  tick_.start(tick);
}

void Tour::proceed() {
  const Step& step = steps_[step_];
  if (++waited_ > mostTicks) return end("the tour got stuck before \"" + step.picture + "\"");
  if (!acted_) {
    acted_ = step.act();
    last_ = {};
    return;
  }
  const QImage now = window_->grabWindow();
  const bool isAtRest = now == last_;
  last_ = now;
  if (!isAtRest) return;
  const QString file = folder_ + "/" + step.picture + ".png";
  if (!now.save(file)) return end("cannot write " + file);
  acted_ = false;
  waited_ = 0;
  if (++step_ == steps_.size()) end({});
}

void Tour::end(const QString& failure) {
  tick_.stop();
  emit finished(failure);
}

QAccessibleInterface* Tour::find(QAccessibleInterface* below, const QString& name) const {
  if (!below || !below->isValid() || below->state().invisible) return nullptr;
  // The top-most screen comes last.
  for (int i = below->childCount() - 1; i >= 0; --i) {
    if (auto* found = find(below->child(i), name)) return found;
  }
  const bool canBePressed = below->actionInterface() != nullptr;
  return canBePressed && below->text(QAccessible::Name) == name ? below : nullptr;
}

bool Tour::isShown(const QString& name) const {
  return find(QAccessible::queryAccessibleInterface(window_), name) != nullptr;
}

bool Tour::press(const QString& name) {
  auto* control = find(QAccessible::queryAccessibleInterface(window_), name);
  if (!control) return false;
  control->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
  return true;
}
