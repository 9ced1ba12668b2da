// The web view's model for QML.
#pragma once

#include <QtQml/qqmlregistration.h>
#include <QString>
#include <memory>
#include <string>

#include "ui/Common/WebView/WebViewModel.h"
#include "ui/qtquick/ConsentBannerAdapter.h"
#include "ui/qtquick/QuickWebSurface.h"

namespace quillon {

class WebViewAdapter : public Adapter {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("made for each screen")
  Q_PROPERTY(quillon::ConsentBannerAdapter* banner READ banner CONSTANT)
  Q_PROPERTY(QString title READ title NOTIFY changed)
  Q_PROPERTY(QString host READ host NOTIFY changed)
  Q_PROPERTY(bool isLoading READ isLoading NOTIFY changed)
  Q_PROPERTY(double progress READ progress NOTIFY changed)
  Q_PROPERTY(bool canGoBack READ canGoBack NOTIFY changed)
  Q_PROPERTY(bool canGoForward READ canGoForward NOTIFY changed)
  Q_PROPERTY(QString backLabel READ backLabel NOTIFY changed)
  Q_PROPERTY(QString forwardLabel READ forwardLabel NOTIFY changed)
  Q_PROPERTY(QQuickItem* page READ page NOTIFY changed)

 public:
  WebViewAdapter(const std::shared_ptr<ConsentBannerViewModel>& banner, std::unique_ptr<QuickWebSurface> surface,
                 std::string link);

  ConsentBannerAdapter* banner() const { return banner_; }
  // The URL being opened, until there is a title.
  QString title() const;
  // The present page's host; empty if it did not come from a server.
  QString host() const;
  bool isLoading() const { return model_->isLoading.get(); }
  double progress() const { return surface_.progress(); }
  bool canGoBack() const { return model_->canGoBack(); }
  bool canGoForward() const { return model_->canGoForward(); }
  QString backLabel() const { return banner_->label(Label::webViewBack); }
  QString forwardLabel() const { return banner_->label(Label::webViewForward); }
  QQuickItem* page() const { return surface_.item(); }

  // Call when the sheet is visible: starts the browser, which takes a while.
  Q_INVOKABLE void appeared();
  Q_INVOKABLE void goBack() { model_->goBack(); }
  Q_INVOKABLE void goForward() { model_->goForward(); }
  Q_INVOKABLE void refreshPage() { model_->refresh(); }
  Q_INVOKABLE void close();

  // Replaces the present page.
  void open(std::string link);

 private:
  QuickWebSurface& surface_;  // owned by the model
  const std::shared_ptr<WebViewModel> model_;
  ConsentBannerAdapter* const banner_;
  std::string link_;
  bool hasAppeared_ = false;
};

}  // namespace quillon
