// The view model of the in-app web view, which shows pages of allowed hosts, and a substitute page for all others.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>

#include "core/Logger/UnitLog.h"
#include "platform/ScreenServices.h"
#include "ui/Common/LoadTask.h"
#include "ui/Common/Published.h"
#include "ui/Common/WebView/BlockedPage.h"
#include "ui/Common/WebView/WebSurface.h"

namespace quillon {

// Main queue only. Lives as long as its sheet, and owns the browser. Allows the application's allowed domains, and the
// hosts of its servers, of the vendor and of all links in the configuration. The latter are collected once on
// construction, in the background, together with the page for refused addresses.
class WebViewModel : public WebNavigationDelegate, public std::enable_shared_from_this<WebViewModel> {
 public:
  // Without a browser no link opens, which is logged.
  static std::shared_ptr<WebViewModel> make(std::shared_ptr<ScreenServices> sdk, std::unique_ptr<WebSurface> surface);

  Published<bool> isLoading{false};  // a navigation is in progress
  Published<std::string> pageTitle{std::string()};
  Published<bool> isBlockedPageShowing{false};

  // Opens a URL once the allowed hosts are known; replaces an earlier request.
  void loadURL(std::string urlString);
  void refresh();
  void stop();
  void goBack();
  void goForward();
  bool canGoBack() const { return webView_ && webView_->canGoBack(); }
  bool canGoForward() const { return webView_ && webView_->canGoForward(); }

  // For the view that displays it; may be null.
  WebSurface* webView() const { return webView_.get(); }

  Policy decidePolicy(std::string_view address, Target target) override;
  void didStartProvisionalNavigation() override;
  void didFinish() override;
  void didFail(std::string_view error) override;
  void didFailProvisionalNavigation(std::string_view error) override;

 private:
  WebViewModel(std::shared_ptr<ScreenServices> sdk, std::unique_ptr<WebSurface> surface);

  std::shared_ptr<const LinkFilter> allowedLinks() const;
  void open(const std::string& link);
  void showBlockedPage(std::string_view address);
  bool isBlockedPage(std::string_view address) const;
  // Runs a function on the main queue, unless another navigation has started or the model is gone.
  void later(std::move_only_function<void(WebViewModel&)> act);
  void takeTitle();
  void navigationEnded();

  const std::shared_ptr<ScreenServices> sdk_;
  const UnitLog log_;
  const std::shared_ptr<SubresourceGate> gate_ = std::make_shared<SubresourceGate>();
  const std::unique_ptr<WebSurface> webView_;
  std::optional<LoadTask> cdnHostsTask_;
  std::optional<std::set<std::string>> cachedCdnHosts_;  // of links in the configuration; nullopt until known
  std::optional<std::string> waiting_;                   // the URL to open once they are known
  std::shared_ptr<const LinkFilter> filter_;             // used for the latest URL; null before
  std::optional<BlockedPage> blockedPage_;               // set together with the hosts
  bool hasShownBlockedPage_ = false;                     // it may be in the browser's history
  bool isBlockedPageDue_ = false;                        // given to the browser, not shown yet
  std::string requested_;                                // the URL last given to the browser
  std::uint64_t navigation_ = 0;                         // sequence number of the latest navigation
};

}  // namespace quillon
