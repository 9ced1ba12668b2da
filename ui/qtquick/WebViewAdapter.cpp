#include "ui/qtquick/WebViewAdapter.h"

#include <QUrl>

namespace quillon {

WebViewAdapter::WebViewAdapter(const std::shared_ptr<ConsentBannerViewModel>& banner,
                               std::unique_ptr<QuickWebSurface> surface, std::string link)
    : surface_(*surface),
      model_(WebViewModel::make(banner->sdk(), std::move(surface))),
      banner_(new ConsentBannerAdapter(banner, this)),
      link_(std::move(link)) {
  follow(model_->isLoading);
  follow(model_->pageTitle);
  follow(model_->isBlockedPageShowing);
  connect(&surface_, &QuickWebSurface::changed, this, &Adapter::changed);
  connect(banner_, &Adapter::changed, this, &Adapter::changed);
}

QString WebViewAdapter::title() const {
  const std::string& title = model_->pageTitle.get();
  return QString::fromStdString(title.empty() ? link_ : title);
}

QString WebViewAdapter::host() const {
  return model_->isBlockedPageShowing.get() ? QString() : QUrl(QString::fromStdString(surface_.address())).host();
}

void WebViewAdapter::appeared() {
  hasAppeared_ = true;
  model_->loadURL(link_);
}

void WebViewAdapter::open(std::string link) {
  link_ = std::move(link);
  if (hasAppeared_) model_->loadURL(link_);
}

void WebViewAdapter::close() {
  model_->stop();
  banner_->model()->leave();
}

}  // namespace quillon
