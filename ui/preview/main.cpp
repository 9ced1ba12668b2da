// quillon-consent-preview: shows a screen of a configuration in a window, or writes its picture.
#include <CLI/CLI.hpp>
#include <QEventLoop>
#include <QGuiApplication>
#include <QImage>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTimer>
#include <chrono>
#include <functional>
#include <future>
#include <iostream>
#include <optional>
#include <string>
#include <utility>

#include "platform/ScreenServices.h"
#include "ui/preview/PreviewDevice.h"
#include "ui/preview/StandInPage.h"
#include "ui/qtquick/QtScreenPresenter.h"
#ifdef WITH_WEB_VIEW
#include "quillon/QtWebEngine.h"
#endif

namespace quillon::preview {
namespace {

struct PreviewOptions {
  std::string file;
  std::string screen = "banner";
  std::string language = "en";
  std::string location;
  std::string size = "390x844";
  bool isDark = false;
  double scale = 1;
  std::string out;

  bool isWebView() const { return screen == "web" || screen == "blocked"; }
};

// The browser must be known before the application object is made.
bool startWebView() {
#ifdef WITH_WEB_VIEW
  return initializeQtWebEngine();
#else
  return false;
#endif
}

void addOptions(CLI::App& app, PreviewOptions& options) {
  app.add_option("file", options.file, "The configuration")->required()->check(CLI::ExistingFile);
  app.add_option("--screen", options.screen, "The screen to show")
      ->check(CLI::IsMember({"banner", "preferences", "permissions", "purpose", "prompt", "web", "blocked"}))
      ->capture_default_str();
  app.add_option("--language", options.language, "The user's language")->capture_default_str();
  app.add_option("--location", options.location, "The user's location, such as DE or US#CA");
  app.add_option("--size", options.size, "Of the window, as WIDTHxHEIGHT")->capture_default_str();
  app.add_flag("--dark", options.isDark, "Dark surroundings");
  app.add_option("--scale", options.scale, "Size of text, as a factor")
      ->check(CLI::Range(0.5, 3.0))
      ->capture_default_str();
  app.add_option("--out", options.out, "Write a PNG picture instead of opening a window");
}

std::optional<QSize> sizeOf(const std::string& text) {
  const auto parts = QString::fromStdString(text).split('x');
  bool isWidth = false;
  bool isHeight = false;
  if (parts.size() != 2) return std::nullopt;
  const QSize size(parts[0].toInt(&isWidth), parts[1].toInt(&isHeight));
  constexpr int largest = 8192;
  if (!isWidth || !isHeight || size.isEmpty() || size.width() > largest || size.height() > largest) return std::nullopt;
  return size;
}

// Lets the main loop run until the condition holds. False when that takes too long; a browser on a busy machine takes
// ten seconds to start.
bool await(const std::function<bool()>& condition) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
  while (!condition()) {
    if (std::chrono::steady_clock::now() > end) return false;
    QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
  }
  return true;
}

class Preview {
 public:
  explicit Preview(const PreviewOptions& options)
      : options_(options),
        presenter_(QtScreenPresenter::make(
            {.isDark = options.isDark, .textScale = options.scale, .isMotionReduced = !options.out.empty()})),
        device_(options.file, presenter_),
        sdk_(device_.platform()) {}

  int run(QSize size) {
    window_.resize(size);
    window_.setColor(options_.isDark ? QColor("#26292e") : QColor("#d9dde2"));
    window_.show();
    if (options_.screen == "web") page_.emplace();
    // Pages of the application's own server may be shown.
    sdk_.setup({.appUrl = page_ ? page_->address() : "https://preview.example/",
                .cdnUrl = "https://preview.example/",
                .tenantId = "preview",
                .appId = "preview",
                .logLevel = LogLevel::error,
                .languageCode = LanguageCode(options_.language),
                .locationCode = options_.location.empty() ? std::nullopt : std::optional(options_.location)});
    sdk_.settled().wait();
    if (sdk_.getStatus() != SDKStatus::ready) {
      std::cerr << "The file is no valid configuration; quillon-consent validate tells why.\n";
      return 1;
    }
    present();
    if (options_.out.empty()) return QGuiApplication::exec();
    return write();
  }

 private:
  std::string linkOfPage() const { return page_ ? page_->address() : "https://elsewhere.example/offer?id=42"; }

  void present() {
    const auto sdk = sdk_.screens();
    if (options_.screen == "banner") presenter_->presentBanner(sdk);
    if (options_.isWebView()) presenter_->presentWebView(sdk, linkOfPage());
    if (options_.screen == "prompt") presenter_->presentSettingsPrompt(sdk, VantariKey::cameraUsageDescription);
    const bool isPurpose = options_.screen == "purpose";
    const bool isPermissions = options_.screen == "permissions";
    if (options_.screen != "preferences" && !isPurpose && !isPermissions) return;
    presenter_->presentPreferenceCenter(sdk);
    await([&] { return isShown(); });
    QObject* item = presenter_->topItem();
    if (isPermissions && item) item->property("model").value<QObject*>()->setProperty("tab", 1);
    if (isPurpose && item) {
      settle();
      QMetaObject::invokeMethod(item, "openFirstPurpose");
    }
  }

  // Cards, texts and pictures come in the turns after the screen.
  void settle() {
    int quietTurns = 0;
    std::future<void> settled = sdk_.settled();
    await([&] {
      // Asked again only once answered: every question is kept until then.
      if (settled.wait_for(std::chrono::seconds(0)) != std::future_status::ready) {
        quietTurns = 0;
        return false;
      }
      settled = sdk_.settled();
      return ++quietTurns > 20;
    });
  }

  bool isShown() const {
    const QQuickItem* item = presenter_->topItem();
    return item && item->property("shown").toDouble() == 1;
  }

  // The title is the page's own once it has come, and stays: neither the start of loading nor its end can be missed.
  bool hasPage(const QObject& model) const {
    return model.property("title").toString().toStdString() != linkOfPage() && !model.property("isLoading").toBool();
  }

  // A browser paints some time after a page has come. Inside the edges of the sheet nothing else is drawn.
  bool isPainted(const QImage& picture, const QQuickItem& page) const {
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

  // Null when the page does not come. It is drawn, and at rest once two pictures in a row are the same.
  QImage pictureOfPage() {
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

  int write() {
    if (!await([&] { return isShown(); })) {
      std::cerr << "The screen does not appear.\n";
      return 1;
    }
    settle();
    const QImage picture = options_.isWebView() ? pictureOfPage() : window_.grabWindow();
    if (picture.isNull()) {
      std::cerr << "The page does not appear.\n";
      return 1;
    }
    if (picture.save(QString::fromStdString(options_.out), "PNG")) return 0;
    std::cerr << "Cannot write " << options_.out << "\n";
    return 1;
  }

  const PreviewOptions& options_;
  std::optional<StandInPage> page_;
  const std::shared_ptr<QtScreenPresenter> presenter_;
  PreviewDevice device_;
  ConsentSDK sdk_;
  QQuickWindow window_;
};

}  // namespace
}  // namespace quillon::preview

int main(int argc, char** argv) {
  using namespace quillon::preview;
  CLI::App app("Shows a screen of a consent configuration.", "quillon-consent preview");
  PreviewOptions options;
  addOptions(app, options);
  CLI11_PARSE(app, argc, argv);
  const auto size = sizeOf(options.size);
  if (!size) {
    std::cerr << "--size: expected WIDTHxHEIGHT in pixels\n";
    return 1;
  }
  // A picture needs no display.
  if (!options.out.empty()) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_QUICK_BACKEND", "software");
  }
  if (options.isWebView() && !startWebView()) {
    std::cerr << "There is no web view: the screens were built without Qt WebEngine.\n";
    return 1;
  }
  const QGuiApplication application(argc, argv);
  return Preview(options).run(*size);
}
