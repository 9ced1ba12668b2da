#include "ui/preview/Preview.h"

#include <QEventLoop>
#include <QGuiApplication>
#include <QTimer>
#include <chrono>
#include <functional>
#include <future>
#include <utility>

namespace quillon::preview {
namespace {

// Runs the main loop until the condition holds. False on timeout; a browser on a busy machine takes ten seconds to
// start.
bool await(const std::function<bool()>& condition) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
  while (!condition()) {
    if (std::chrono::steady_clock::now() > end) return false;
    QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
  }
  return true;
}

// A browser paints some time after a page has loaded. Looks inside the sheet's edges, where nothing else is drawn.
bool isPainted(const QImage& picture, const QQuickItem& page) {
  constexpr int edge = 24;
  const auto place =
      page.mapRectToScene(page.boundingRect()).toAlignedRect().adjusted(edge, edge, -edge, -edge) & picture.rect();
  for (int y = place.top(); y <= place.bottom(); ++y) {
    for (int x = place.left(); x <= place.right(); ++x) {
      if (picture.pixel(x, y) != picture.pixel(place.topLeft())) return true;
    }
  }
  return false;
}

}  // namespace

std::optional<QSize> sizeFrom(const std::string& text) {
  const auto parts = QString::fromStdString(text).split('x');
  bool isWidth = false;
  bool isHeight = false;
  if (parts.size() != 2) return std::nullopt;
  const QSize size(parts[0].toInt(&isWidth), parts[1].toInt(&isHeight));
  constexpr int largest = 8192;
  if (!isWidth || !isHeight || size.isEmpty() || size.width() > largest || size.height() > largest) return std::nullopt;
  return size;
}

Preview::Preview(View view, std::string document, std::shared_ptr<QtScreenPresenter> presenter)
    : view_(std::move(view)),
      presenter_(std::move(presenter)),
      device_(std::move(document), presenter_),
      sdk_(device_.platform()) {}

Preview::~Preview() {
  dismiss();
  // Deleted screens use the SDK until deferred deletion, which would otherwise wait for the outermost loop.
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

bool Preview::start() {
  window_.resize(view_.size);
  window_.setColor(view_.isDark ? QColor("#26292e") : QColor("#d9dde2"));
  window_.show();
  if (view_.screen == "web") page_.emplace();
  // Allows the page, since it is on the application's server.
  sdk_.setup({.appUrl = page_ ? page_->address() : "https://preview.example/",
              .cdnUrl = "https://preview.example/",
              .tenantId = "preview",
              .appId = "preview",
              .logLevel = LogLevel::error,
              .languageCode = LanguageCode(view_.language),
              .locationCode = view_.location.empty() ? std::nullopt : std::optional(view_.location)});
  sdk_.settled().wait();
  return sdk_.getStatus() == SDKStatus::ready;
}

void Preview::present(const std::string& screen) {
  dismiss();
  view_.screen = screen;
  const auto sdk = sdk_.screens();
  if (screen == "banner") presenter_->presentBanner(sdk);
  if (view_.isWebView()) presenter_->presentWebView(sdk, linkOfPage());
  if (screen == "prompt") presenter_->presentSettingsPrompt(sdk, VantariKey::cameraUsageDescription);
  const bool isPurpose = screen == "purpose";
  const bool isPermissions = screen == "permissions";
  if (screen != "preferences" && !isPurpose && !isPermissions) return;
  presenter_->presentPreferenceCenter(sdk);
  await([&] { return isShown(); });
  QObject* item = presenter_->topItem();
  if (isPermissions && item) item->property("model").value<QObject*>()->setProperty("tab", 1);
  if (isPurpose && item) {
    settle();
    QMetaObject::invokeMethod(item, "openFirstPurpose");
  }
}

QImage Preview::picture() {
  if (!await([&] { return isShown(); })) return {};
  settle();
  return view_.isWebView() ? pictureOfPage() : window_.grabWindow();
}

void Preview::dismiss() {
  if (!presenter_->topItem()) return;
  presenter_->dismissTopMost();
  await([&] { return !presenter_->topItem(); });
}

// Cards, texts and pictures are created in later turns of the loop.
void Preview::settle() {
  int quietTurns = 0;
  std::future<void> settled = sdk_.settled();
  await([&] {
    // Ask again only when answered, since each pending call takes memory.
    if (settled.wait_for(std::chrono::seconds(0)) != std::future_status::ready) {
      quietTurns = 0;
      return false;
    }
    settled = sdk_.settled();
    quietTurns = presenter_->isFilling() ? 0 : quietTurns + 1;
    return quietTurns > 20;
  });
}

bool Preview::isShown() const {
  const QQuickItem* item = presenter_->topItem();
  return item && item->property("shown").toDouble() == 1;
}

// Waits for the page's title, which stays set, so the state cannot be missed; isLoading alone may not have become true
// yet.
bool Preview::hasPage(const QObject& model) const {
  return model.property("title").toString().toStdString() != linkOfPage() && !model.property("isLoading").toBool();
}

// Null if the page does not load. The page is complete when it is painted and two successive pictures are equal.
QImage Preview::pictureOfPage() {
  const auto& model = *presenter_->topItem()->property("model").value<QObject*>();
  if (!await([&] { return hasPage(model); })) return {};
  const auto& page = *model.property("page").value<QQuickItem*>();
  QImage last;
  const bool isAtRest = await([&] {
    QEventLoop loop;
    QTimer::singleShot(std::chrono::milliseconds(300), &loop, &QEventLoop::quit);
    loop.exec();
    const QImage now = window_.grabWindow();
    return now == std::exchange(last, now) && isPainted(now, page);
  });
  return isAtRest ? last : QImage();
}

}  // namespace quillon::preview
