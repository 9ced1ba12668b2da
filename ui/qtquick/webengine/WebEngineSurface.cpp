#include "ui/qtquick/webengine/WebEngineSurface.h"

#include <QQmlComponent>
#include <QQuickWebEngineProfile>
#include <QWebEngineCookieStore>

#include "ui/qtquick/webengine/RequestInterceptor.h"

// Generated for the QML module. A static library's initialisers must be referenced to be linked.
void qml_register_types_Quillon_Consent_WebEngine();

namespace quillon {
namespace {

std::string textOf(const QUrl& address) {
  return address.toEncoded().toStdString();
}

}  // namespace

WebEngineSurface::~WebEngineSurface() {
  delete view_;
}

void WebEngineSurface::attach(std::weak_ptr<WebNavigationDelegate> delegate,
                              std::shared_ptr<const SubresourceGate> gate) {
  delegate_ = std::move(delegate);
  gate_ = std::move(gate);
}

QQuickItem* WebEngineSurface::view() {
  if (view_) return view_;
  qml_register_types_Quillon_Consent_WebEngine();
  QQmlComponent component(&engine_, QUrl("qrc:/qt/qml/Quillon/Consent/WebEngine/BrowserView.qml"));
  if (component.isReady()) {
    view_ = qobject_cast<QQuickItem*>(component.createWithInitialProperties({{"surface", QVariant::fromValue(this)}}));
  }
  if (!view_) {
    pageFailed(component.errorString());
    return nullptr;
  }
  QQmlEngine::setObjectOwnership(view_, QQmlEngine::CppOwnership);
  auto* profile = get("profile").value<QQuickWebEngineProfile*>();
  profile->setUrlRequestInterceptor(new RequestInterceptor(gate_, profile));
  profile->cookieStore()->setCookieFilter([](const auto& request) { return !request.thirdParty; });
  Q_EMIT changed();
  return view_;
}

void WebEngineSurface::load(const std::string& address) {
  if (auto* view = this->view()) view->setProperty("url", QUrl::fromEncoded(QByteArray::fromStdString(address)));
}

void WebEngineSurface::loadHtml(const std::string& html) {
  if (auto* view = this->view()) {
    QMetaObject::invokeMethod(view, "loadHtml", Q_ARG(QString, QString::fromStdString(html)));
  }
}

void WebEngineSurface::invoke(const char* method) {
  if (view_) QMetaObject::invokeMethod(view_, method);
}

std::string WebEngineSurface::title() const {
  const QString title = get("title").toString();
  // The engine uses a shortened URL as the title of a page without one.
  const bool isAddress = QUrl::fromUserInput(title).matches(get("url").toUrl(), QUrl::StripTrailingSlash);
  return isAddress ? std::string() : title.toStdString();
}

std::string WebEngineSurface::address() const {
  return textOf(get("url").toUrl());
}

void WebEngineSurface::runScript(const std::string& script, std::function<void(std::string result)> done) {
  if (!view_) return;
  scripts_.emplace(++lastScript_, std::move(done));
  QMetaObject::invokeMethod(view_, "evaluate", Q_ARG(QVariant, QString::fromStdString(script)),
                            Q_ARG(QVariant, lastScript_));
}

void WebEngineSurface::scriptEnded(int number, const QString& result) {
  tell([this, number, result](WebNavigationDelegate&) {
    if (auto script = scripts_.extract(number)) script.mapped()(result.toStdString());
  });
}

bool WebEngineSurface::allowsNavigation(const QUrl& address, bool isMainFrame) {
  const auto delegate = delegate_.lock();
  if (!delegate) return false;
  if (isMainFrame) {
    return delegate->decidePolicy(textOf(address), WebNavigationDelegate::Target::thisView) ==
           WebNavigationDelegate::Policy::allow;
  }
  // The interceptor refuses requests of frames; refusing a redirect here would leave the page loading forever.
  static const QStringList fetched{"http", "https", "about", "data", "blob"};
  return fetched.contains(address.scheme());
}

void WebEngineSurface::windowWanted(const QUrl& address) {
  if (const auto delegate = delegate_.lock()) {
    delegate->decidePolicy(textOf(address), WebNavigationDelegate::Target::newWindow);
  }
}

void WebEngineSurface::navigationStarted() {
  tell([](WebNavigationDelegate& delegate) { delegate.didStartProvisionalNavigation(); });
}

void WebEngineSurface::navigationSucceeded() {
  tell([](WebNavigationDelegate& delegate) { delegate.didFinish(); });
}

void WebEngineSurface::navigationFailed(const QString& error) {
  tell(
      [error = error.toStdString()](WebNavigationDelegate& delegate) { delegate.didFailProvisionalNavigation(error); });
}

void WebEngineSurface::pageFailed(const QString& error) {
  tell([error = error.toStdString()](WebNavigationDelegate& delegate) { delegate.didFail(error); });
}

void WebEngineSurface::tell(std::function<void(WebNavigationDelegate&)> news) {
  QMetaObject::invokeMethod(
      this,
      [this, news = std::move(news)] {
        if (const auto delegate = delegate_.lock()) news(*delegate);
      },
      Qt::QueuedConnection);
}

}  // namespace quillon
