#include "ui/qtquick/QtScreenPresenter.h"

#include <QFontDatabase>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QProcess>
#include <QStandardPaths>
#include <QThreadPool>
#include <QtPlugin>
#include <algorithm>

#include "core/Logger/UnitLog.h"
#include "ui/PreferenceCenter/PreferenceCenterViewModel.h"
#include "ui/SettingsPrompt/SettingsPromptViewModel.h"
#include "ui/qtquick/AccessibleScope.h"
#include "ui/qtquick/Incubation.h"
#include "ui/qtquick/MainQueue.h"
#include "ui/qtquick/Module.h"
#include "ui/qtquick/PreferenceCenterAdapter.h"
#include "ui/qtquick/SettingsPromptAdapter.h"
#include "ui/qtquick/WebViewAdapter.h"

namespace quillon {
namespace {

constexpr std::string_view sourceFile = "QtScreenPresenter";

// The desktops' settings programs, opened at their page for applications if they have one.
struct SettingsProgram {
  const char* desktop;
  const char* program;
  QStringList arguments;
};

const std::vector<SettingsProgram>& settingsPrograms() {
  static const std::vector<SettingsProgram> programs{{"GNOME", "gnome-control-center", {"applications"}},
                                                     {"KDE", "systemsettings", {}},
                                                     {"XFCE", "xfce4-settings-manager", {}},
                                                     {"X-Cinnamon", "cinnamon-settings", {}},
                                                     {"MATE", "mate-control-center", {}},
                                                     {"LXQt", "lxqt-config", {}}};
  return programs;
}

// Covers or uncovers the application's HostPages below an item.
void coverPages(QQuickItem& item, bool isCovered) {
  if (auto* page = qobject_cast<AccessibleScope*>(&item)) page->setCovered(isCovered);
  for (QQuickItem* child : item.childItems()) coverPages(*child, isCovered);
}

}  // namespace

std::shared_ptr<QtScreenPresenter> QtScreenPresenter::make(QtQuickOptions options) {
  // The last owner may be a task on another thread.
  return {new QtScreenPresenter(options), [](QtScreenPresenter* presenter) { presenter->deleteLater(); }};
}

QtScreenPresenter::QtScreenPresenter(QtQuickOptions options) : options_(options) {
  connect(&MainQueue::instance(), &MainQueue::ending, this, [this] { clear(); });
}

QtScreenPresenter::~QtScreenPresenter() {
  clear();
}

// Releases everything that depends on the application object.
void QtScreenPresenter::clear() {
  stack_.clear();
  // Includes screens that are closing.
  qDeleteAll(findChildren<Screen*>(Qt::FindDirectChildrenOnly));
  ownWindow_.reset();
  components_.clear();
  engine_.reset();
}

void QtScreenPresenter::prepare() {
  for (const ScreenKind kind : {ScreenKind::banner, ScreenKind::preferenceCenter, ScreenKind::settingsPrompt}) {
    component(kind);
  }
  // A process's first text waits for the font list, which any thread can load.
  QThreadPool::globalInstance()->start([] { QFontDatabase::families(); });
}

QQmlComponent& QtScreenPresenter::component(ScreenKind kind) {
  if (!engine_) {
    engine_ = std::make_unique<QQmlEngine>();
    addModule(*engine_);
    engine_->setIncubationController(new Incubation(engine_.get()));
    engine_->setOutputWarningsToStandardError(true);
  }
  auto& component = components_[kind];
  if (!component) {
    const char* names[] = {"BannerSheet", "PreferenceSheet", "PromptSheet", "WebViewSheet"};
    const QString file = QString("qrc:/qt/qml/Quillon/Consent/%1.qml").arg(names[static_cast<int>(kind)]);
    component = std::make_unique<QQmlComponent>(engine_.get(), QUrl(file), QQmlComponent::Asynchronous);
  }
  return *component;
}

bool QtScreenPresenter::isShown(ScreenKind kind, const Services& sdk) const {
  return std::ranges::any_of(stack_,
                             [&](const Screen* screen) { return screen->kind() == kind && screen->sdk() == sdk; });
}

void QtScreenPresenter::presentBanner(Services sdk) {
  if (isShown(ScreenKind::banner, sdk)) return;
  auto* adapter = new ConsentBannerAdapter(ConsentBannerViewModel::make(sdk));
  adapter->load();
  present(std::make_unique<Screen>(ScreenKind::banner, std::move(sdk), adapter, adapter));
}

void QtScreenPresenter::presentPreferenceCenter(Services sdk) {
  if (isShown(ScreenKind::preferenceCenter, sdk)) return;
  auto* adapter =
      new PreferenceCenterAdapter(PreferenceCenterViewModel::make(ConsentBannerViewModel::make(sdk)), options_);
  adapter->load();
  present(std::make_unique<Screen>(ScreenKind::preferenceCenter, std::move(sdk), adapter, adapter->banner()));
}

void QtScreenPresenter::presentSettingsPrompt(Services sdk, const VantariKey& permission) {
  if (isShown(ScreenKind::settingsPrompt, sdk)) return;
  auto* adapter = new SettingsPromptAdapter(
      std::make_unique<SettingsPromptViewModel>(ConsentBannerViewModel::make(sdk), permission));
  adapter->load();
  present(std::make_unique<Screen>(ScreenKind::settingsPrompt, std::move(sdk), adapter, adapter->banner()));
}

void QtScreenPresenter::presentWebView(Services sdk, const std::string& link) {
  if (!webSurfaceFactory()) {
    UnitLog(sdk->logger(), sourceFile)(LogLevel::warning, "No web view is linked, not opened: " + escapedForLog(link),
                                       "presentWebView()");
    return;
  }
  for (const Screen* screen : stack_) {
    if (screen->kind() != ScreenKind::webView || screen->sdk() != sdk) continue;
    return static_cast<WebViewAdapter*>(screen->model())->open(link);
  }
  component(ScreenKind::webView);  // creates the QML engine
  const auto banner = ConsentBannerViewModel::make(sdk);
  banner->loadBannerConfig();
  auto* adapter = new WebViewAdapter(banner, webSurfaceFactory()(*engine_), link);
  present(std::make_unique<Screen>(ScreenKind::webView, std::move(sdk), adapter, adapter->banner()));
}

void QtScreenPresenter::present(std::unique_ptr<Screen> made) {
  Screen* screen = made.release();
  screen->setParent(this);
  stack_.push_back(screen);
  connect(screen, &Screen::created, this, [this, screen] { show(screen); });
  connect(screen, &Screen::lostWindow, this, [this, screen] { dismiss(screen); });
  connect(screen->banner(), &Adapter::changed, this, [this] { styleAfterTop(); });
  QQmlComponent& component = this->component(screen->kind());
  const auto create = [this, screen, &component] {
    if (std::ranges::find(stack_, screen) == stack_.end()) return;
    if (component.isError()) {
      UnitLog(screen->sdk()->logger(), sourceFile)(
          LogLevel::error, "The screen cannot be made: " + escapedForLog(component.errorString().toStdString()),
          "present()");
      dismiss(screen);
      return;
    }
    styleAfterTop();
    screen->createFrom(component);
  };
  if (component.isLoading()) {
    connect(&component, &QQmlComponent::statusChanged, screen, create, Qt::SingleShotConnection);
  } else {
    create();
  }
}

void QtScreenPresenter::show(Screen* screen) {
  QQuickWindow* window = hostWindow();
  window->removeEventFilter(this);
  window->installEventFilter(this);
  const auto height = std::ranges::find(stack_, screen) - stack_.begin();
  // Above all of the host's items.
  constexpr double lowest = 1'000'000;
  screen->item()->setZ(lowest + static_cast<double>(height));
  screen->showIn(*window);
  coverBelowTop(*window);
}

void QtScreenPresenter::coverBelowTop(QQuickWindow& window) {
  QQuickItem* top = nullptr;
  for (const Screen* screen : stack_) {
    QQuickItem* const item = screen->item();
    if (!item || item->window() != &window) continue;
    if (top) top->setProperty("isCovered", true);
    item->setProperty("isCovered", false);
    top = item;
  }
  for (QQuickItem* child : window.contentItem()->childItems()) {
    // Skips screens, including closing ones.
    if (!child->property("isLeaving").isValid()) coverPages(*child, top != nullptr);
  }
}

void QtScreenPresenter::styleAfterTop() {
  if (stack_.empty() || !engine_) return;
  const Screen* top = stack_.back();
  Style::of(*engine_).show(options_, *top->sdk(), top->banner()->model()->bannerConfig.get());
}

void QtScreenPresenter::dismissTopMost() {
  if (!stack_.empty()) dismiss(stack_.back());
}

void QtScreenPresenter::dismissBanner(Services sdk) {
  const auto found = std::ranges::find_if(
      stack_, [&](const Screen* screen) { return screen->kind() == ScreenKind::banner && screen->sdk() == sdk; });
  if (found != stack_.end()) dismiss(*found);
}

void QtScreenPresenter::dismiss(Screen* screen) {
  if (std::erase(stack_, screen) == 0) return;
  for (Screen* above : stack_) {
    if (screen->contains(above->formerFocus)) above->formerFocus = screen->formerFocus;
  }
  screen->disconnect(this);
  // Our own window closes with its last screen.
  if (ownWindow_ && screen->item()) screen->item()->setProperty("closingMessage", QString());
  if (screen->item() && screen->item()->window()) coverBelowTop(*screen->item()->window());
  connect(screen, &QObject::destroyed, this, [this] { closeOwnWindow(); });
  screen->leave();
  styleAfterTop();
}

QQuickWindow* QtScreenPresenter::hostWindow() {
  for (const Screen* screen : stack_) {
    if (screen->item() && screen->item()->window()) return screen->item()->window();
  }
  const auto isHost = [](const QWindow* window) {
    return window && window->isVisible() && (window->type() == Qt::Window || window->type() == Qt::Dialog);
  };
  if (isHost(QGuiApplication::focusWindow())) {
    if (auto* window = qobject_cast<QQuickWindow*>(QGuiApplication::focusWindow())) return window;
  }
  const auto windows = QGuiApplication::topLevelWindows();
  QWindow* other = nullptr;  // of another toolkit
  for (auto window = windows.rbegin(); window != windows.rend(); ++window) {
    if (!isHost(*window)) continue;
    if (auto* quick = qobject_cast<QQuickWindow*>(*window)) return quick;
    if (!other || *window == QGuiApplication::focusWindow()) other = *window;
  }
  ownWindow_ = std::make_unique<QQuickWindow>();
  ownWindow_->setTitle(QGuiApplication::applicationDisplayName());
  ownWindow_->resize(480, 760);
  if (other) {
    ownWindow_->setTransientParent(other);
    ownWindow_->setModality(Qt::WindowModal);
    ownWindow_->setGeometry(other->geometry());
  }
  connect(ownWindow_.get(), &QWindow::visibleChanged, this, [this](bool isVisible) {
    while (!isVisible && !stack_.empty()) dismissTopMost();
  });
  ownWindow_->show();
  ownWindow_->requestActivate();
  return ownWindow_.get();
}

void QtScreenPresenter::closeOwnWindow() {
  if (stack_.empty() && ownWindow_) ownWindow_.release()->deleteLater();
}

bool QtScreenPresenter::eventFilter(QObject* watched, QEvent* event) {
  const auto* top = topItem();
  if (event->type() != QEvent::KeyPress || !top || top->window() != watched) return false;
  const auto* key = static_cast<QKeyEvent*>(event);
  if (key->key() != Qt::Key_Tab && key->key() != Qt::Key_Backtab) return false;
  if (top->property("keepsTabKey").toBool()) return false;
  const bool isForward = key->key() == Qt::Key_Tab && !key->modifiers().testFlag(Qt::ShiftModifier);
  QQuickItem* const begin = top->window()->activeFocusItem();
  // The item handles Tab itself.
  if (isForward && begin && begin->property("following").value<QQuickItem*>()) return false;
  QQuickItem* next = begin ? begin : topItem();
  // Searches once around the window, skipping the host's controls.
  constexpr int mostItems = 10'000;
  for (int i = 0; i < mostItems; ++i) {
    next = next->nextItemInFocusChain(isForward);
    if (!next || next == begin) return true;
    if (stack_.back()->contains(next)) break;
  }
  if (stack_.back()->contains(next)) next->forceActiveFocus(isForward ? Qt::TabFocusReason : Qt::BacktabFocusReason);
  return true;
}

void QtScreenPresenter::openSystemSettings() {
  const QString desktop = qEnvironmentVariable("XDG_CURRENT_DESKTOP");
  for (const bool isAnyWelcome : {false, true}) {
    for (const auto& [name, program, arguments] : settingsPrograms()) {
      if (!isAnyWelcome && !desktop.contains(name, Qt::CaseInsensitive)) continue;
      const QString path = QStandardPaths::findExecutable(program);
      if (!path.isEmpty() && QProcess::startDetached(path, arguments)) return;
    }
  }
  if (stack_.empty()) return;
  UnitLog(stack_.back()->sdk()->logger(), sourceFile)(
      LogLevel::warning, "This desktop has no settings program that we know, nothing is opened",
      "openSystemSettings()");
}

}  // namespace quillon
