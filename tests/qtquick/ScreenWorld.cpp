#include "tests/qtquick/ScreenWorld.h"

#include <gtest/gtest.h>

#include <QAbstractEventDispatcher>
#include <QAccessible>
#include <QEventLoop>
#include <QTest>
#include <QTimer>
#include <boost/json/serialize.hpp>

#include "core/Persistance/UserDefaults/StoreKeys.h"
#include "platform/linux/AsioExecutors.h"
#include "ui/qtquick/MainQueue.h"

namespace quillon::test {

std::vector<QQuickItem*> itemsBelow(QQuickItem* item) {
  std::vector<QQuickItem*> items{item};
  for (std::size_t i = 0; i < items.size(); ++i) {
    for (QQuickItem* child : items[i]->childItems()) items.push_back(child);
  }
  return items;
}

ScreenWorld::ScreenWorld(const QtQuickOptions& options)
    : presenter(QtScreenPresenter::make(options)), window(std::make_unique<QQuickWindow>()) {
  QAccessible::setActive(true);
  auto& banner = bannerOf(document);
  banner["preference_center_link"] = {{"en", "Choose"}};
  // The same words in every language that a test speaks.
  banner["accept"] = {{"en", "Accept"}, {"ar", "Accept"}};
  banner["reject"] = {{"en", "Reject"}, {"ar", "Reject"}};
  banner["should_show_settings_prompt"] = true;
  document["is_sp_enabled"] = true;
  document["settings_prompt"] = {{"prompt_heading", {{"en", "Change"}}},
                                 {"prompt_message", {{"en", "In the settings"}}},
                                 {"settings_button_text", {{"en", "Open"}}},
                                 {"not_now_button_text", {{"en", "Later"}}},
                                 {"permissions", {{"NSCameraUsageDescription", true}}}};
  document["purposes"].as_array()[0].as_object()["disable_opt_out"] = false;
  world.amend = [this](Platform& platform) {
    platform.screens = presenter;
    platform.executors =
        std::make_shared<AsioExecutors>([](std::function<void()> job) { MainQueue::instance().post(std::move(job)); });
  };
  window->resize(400, 700);
  hostControl = new QQuickItem(window->contentItem());
  hostControl->setActiveFocusOnTab(true);
  window->show();
  window->requestActivate();
  hostControl->forceActiveFocus();
  EXPECT_TRUE(await([&] { return window->isActive(); }));
}

ScreenWorld::~ScreenWorld() {
  if (world.sdk) settle();
}

void ScreenWorld::start() {
  world.server.serve(boost::json::serialize(document));
  auto options = world.options();
  options.languageCode = language;
  world.start(options);
}

bool ScreenWorld::await(const std::function<bool()>& condition) {
  if (condition()) return true;
  constexpr int limitMilliseconds = 30000;
  QEventLoop loop;
  QTimer::singleShot(limitMilliseconds, &loop, [&loop] { loop.exit(1); });
  // Looked at when the loop has done all there was, and would sleep until something comes.
  QObject::connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock, &loop, [&] {
    if (condition()) loop.quit();
  });
  return loop.exec() == 0;
}

void ScreenWorld::settle() {
  for (int quiet = 0; quiet < 2;) {
    const auto settled = world.sdk->settled();
    const bool isQuiet = settled.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
    quiet = isQuiet && !presenter->isFilling() ? quiet + 1 : 0;
    settled.wait();
    for (int turn = 0; turn < 3; ++turn) QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  }
}

void ScreenWorld::advance(std::chrono::milliseconds time) {
  world.advance(time);
  settle();
}

void ScreenWorld::banner() {
  world.store(key::isBannerPresent, false);
  world.store(key::consentGivenType, std::string(rawValue(GivenType::noAction)));
  world.sdk->presentBanner();
  screenWith("Reject");
}

void ScreenWorld::preferenceCenter() {
  world.sdk->presentPreferenceCenter();
  screenWith("Statistics");
}

void ScreenWorld::prompt() {
  world.sdk->presentSettingPrompt(VantariKey::cameraUsageDescription);
  screenWith("Later");
}

void ScreenWorld::screenWith(const std::string& text) {
  ASSERT_TRUE(await([&] { return isShown() && control(text); })) << world.log();
  settle();
  // Its items lie where they belong once it was drawn.
  top()->window()->grabWindow();
}

bool ScreenWorld::isGone() {
  settle();
  return await([&] { return !top(); });
}

std::vector<QQuickItem*> ScreenWorld::items() const {
  auto items = top() ? itemsBelow(top()) : std::vector<QQuickItem*>();
  std::erase_if(items, [](const QQuickItem* item) { return !item->isVisible(); });
  return items;
}

QQuickItem* ScreenWorld::control(const std::string& text) const {
  for (QQuickItem* item : items()) {
    const bool isControl = item->metaObject()->indexOfSignal("clicked()") >= 0;
    if (isControl && item->property("text").toString().toStdString() == text) return item;
  }
  return nullptr;
}

void ScreenWorld::use(const std::string& text, Way way) {
  QQuickItem* item = control(text);
  ASSERT_TRUE(item) << text;
  tap(*item, way);
}

void ScreenWorld::tap(QQuickItem& item, Way way) {
  QMetaObject::invokeMethod(top(), "reveal", Q_ARG(QVariant, QVariant::fromValue(&item)));
  const QPoint middle = item.mapToScene(item.boundingRect().center()).toPoint();
  switch (way) {
    case Way::mouse:
      QTest::mouseClick(item.window(), Qt::LeftButton, {}, middle);
      break;
    case Way::touch: {
      static QPointingDevice* const screen = QTest::createTouchDevice();
      QTest::touchEvent(item.window(), screen).press(0, middle);
      QTest::touchEvent(item.window(), screen).release(0, middle);
      break;
    }
    case Way::key: {
      constexpr int mostControls = 60;
      for (int i = 0; i < mostControls && !item.hasActiveFocus(); ++i) key(Qt::Key_Tab);
      ASSERT_TRUE(item.hasActiveFocus()) << "the keyboard does not reach it";
      key(Qt::Key_Space);
      break;
    }
    case Way::assistive: {
      auto* interface = QAccessible::queryAccessibleInterface(&item);
      ASSERT_TRUE(interface && interface->actionInterface());
      interface->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
      break;
    }
  }
  settle();
}

void ScreenWorld::key(int key, Qt::KeyboardModifiers modifiers) {
  QTest::keyClick(window.get(), static_cast<Qt::Key>(key), modifiers);
}

}  // namespace quillon::test
