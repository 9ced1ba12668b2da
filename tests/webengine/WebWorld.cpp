#include "tests/webengine/WebWorld.h"

#include <QDeadlineTimer>
#include <QEventLoop>
#include <QTest>
#include <QTimer>

#include "platform/ScreenServices.h"

namespace quillon::test {

WebWorld::WebWorld() {
  webSurfaceFactory() = [this](QQmlEngine& engine) {
    auto made = factory_(engine);
    surface = made.get();
    return made;
  };
  screens.start();
}

WebWorld::~WebWorld() {
  webSurfaceFactory() = factory_;
}

bool WebWorld::await(const std::function<bool()>& condition, int limitMilliseconds) {
  constexpr int pause = 5;
  const QDeadlineTimer limit(limitMilliseconds);
  while (!condition()) {
    if (limit.hasExpired()) return false;
    QEventLoop loop;
    QTimer::singleShot(pause, &loop, &QEventLoop::quit);
    loop.exec();
  }
  return true;
}

std::string replaced(std::string text, std::string_view place, const std::string& value) {
  for (auto at = text.find(place); at != text.npos; at = text.find(place)) text.replace(at, place.size(), value);
  return text;
}

std::string WebWorld::filled(std::string text) const {
  text = replaced(std::move(text), "$REFUSED", "http://" + refused.authority());
  return replaced(replaced(std::move(text), "$HOST", refused.authority()), "$ALLOWED", allowed.url());
}

void WebWorld::serve(const std::string& path, const std::string& body, httplib::Headers headers, int status) {
  for (auto& [name, value] : headers) value = filled(value);
  allowed.serve(path, filled(body), std::move(headers), status);
}

void WebWorld::open(const std::string& link) {
  screens.world.sdk->screens()->openLink(filled(link));
  EXPECT_TRUE(await([&] { return surface && surface->item(); })) << link;
}

void WebWorld::shows(const std::string& expected) {
  EXPECT_TRUE(await([&] { return title() == expected && !isLoading(); })) << title() << screens.world.log();
}

void WebWorld::paints() {
  evaluate("requestAnimationFrame(() => requestAnimationFrame(() => window.isPainted = true))");
  EXPECT_TRUE(await([&] { return evaluate("'' + window.isPainted") == "true"; }));
}

std::string WebWorld::evaluate(const std::string& script) {
  const auto result = std::make_shared<std::optional<std::string>>();
  surface->runScript(script, [result](std::string text) { *result = std::move(text); });
  await([&] { return result->has_value(); }, 1'000);
  return result->value_or("");
}

void WebWorld::click() {
  const QQuickItem& page = *surface->item();
  QTest::mouseClick(page.window(), Qt::LeftButton, {}, page.mapToScene(page.boundingRect().center()).toPoint());
}

QVariant WebWorld::sheet(const char* property) const {
  if (!screens.top()) return {};
  return screens.top()->property("model").value<QObject*>()->property(property);
}

}  // namespace quillon::test
