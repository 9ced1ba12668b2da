// The browser surface on Qt WebEngine.
#pragma once

#include <QtQml/qqmlregistration.h>
#include <QPointer>
#include <QUrl>
#include <functional>
#include <map>
#include <memory>
#include <string>

#include "ui/qtquick/QuickWebSurface.h"

namespace quillon {

// The engine starts with the first page. Each surface has its own profile, which stores nothing.
class WebEngineSurface : public QuickWebSurface {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("made for each web view")

 public:
  explicit WebEngineSurface(QQmlEngine& engine) : engine_(engine) {}
  ~WebEngineSurface() override;

  void attach(std::weak_ptr<WebNavigationDelegate> delegate, std::shared_ptr<const SubresourceGate> gate) override;
  void load(const std::string& address) override;
  void loadHtml(const std::string& html) override;
  void reload() override { invoke("reload"); }
  void stop() override { invoke("stop"); }
  void goBack() override { invoke("goBack"); }
  void goForward() override { invoke("goForward"); }
  bool canGoBack() const override { return get("canGoBack").toBool(); }
  bool canGoForward() const override { return get("canGoForward").toBool(); }
  std::string title() const override;
  std::string address() const override;
  void runScript(const std::string& script, std::function<void(std::string result)> done) override;
  QQuickItem* item() const override { return view_; }
  double progress() const override { return get("loadProgress").toInt() / 100.0; }

  // Called by BrowserView.qml.
  Q_INVOKABLE bool allowsNavigation(const QUrl& address, bool isMainFrame);
  Q_INVOKABLE void windowWanted(const QUrl& address);
  Q_INVOKABLE void navigationStarted();
  Q_INVOKABLE void navigationSucceeded();
  Q_INVOKABLE void navigationFailed(const QString& error);
  Q_INVOKABLE void pageFailed(const QString& error);
  Q_INVOKABLE void scriptEnded(int number, const QString& result);

 private:
  QQuickItem* view();
  QVariant get(const char* property) const { return view_ ? view_->property(property) : QVariant(); }
  void invoke(const char* method);
  // Notifies asynchronously, since the delegate may destroy the surface, which must not happen during an engine signal.
  void tell(std::function<void(WebNavigationDelegate&)> news);

  QQmlEngine& engine_;
  std::weak_ptr<WebNavigationDelegate> delegate_;
  std::shared_ptr<const SubresourceGate> gate_;
  QPointer<QQuickItem> view_;
  std::map<int, std::function<void(std::string)>> scripts_;  // running
  int lastScript_ = 0;
};

}  // namespace quillon
