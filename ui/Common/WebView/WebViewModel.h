// The in-app web view: shows pages of allowed hosts, and for any other address a page that says so.
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

// For the main queue only. Lives as long as the sheet that shows it and releases the browser with it. Besides the
// application's allowed domains the hosts of its servers, of the vendor and of all links in the configuration are
// allowed; the latter are gathered once, in the background, when the model is made, together with the page for refused
// addresses.
class WebViewModel : public WebNavigationDelegate, public std::enable_shared_from_this<WebViewModel> {
 public:
  // Without a browser every link opens nowhere, which is logged.
  static std::shared_ptr<WebViewModel> make(std::shared_ptr<ScreenServices> sdk, std::unique_ptr<WebSurface> surface);

  Published<bool> isLoading{false};  // a navigation is in progress
  Published<std::string> pageTitle{std::string()};
  Published<bool> isBlockedPageShowing{false};

  // Opens an address as soon as the allowed hosts are known. A later call takes the place of an earlier one.
  void loadURL(std::string urlString);
  void refresh();
  void stop();
  void goBack();
  void goForward();
  bool canGoBack() const { return webView_ && webView_->canGoBack(); }
  bool canGoForward() const { return webView_ && webView_->canGoForward(); }

  // The browser surface, for the view that shows it; may be null.
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
  // Runs a function of the model later, unless another navigation has begun or the model is gone by then.
  void later(std::move_only_function<void(WebViewModel&)> act);
  void takeTitle();
  void navigationEnded();

  const std::shared_ptr<ScreenServices> sdk_;
  const UnitLog log_;
  const std::shared_ptr<SubresourceGate> gate_ = std::make_shared<SubresourceGate>();
  const std::unique_ptr<WebSurface> webView_;
  std::optional<LoadTask> cdnHostsTask_;
  std::optional<std::set<std::string>> cachedCdnHosts_;  // of the links in the configuration; nothing until known
  std::optional<std::string> waiting_;                   // the address to open then
  std::shared_ptr<const LinkFilter> filter_;             // of the address opened last; null until then
  std::optional<BlockedPage> blockedPage_;               // known together with the hosts
  bool hasShownBlockedPage_ = false;                     // so that it is somewhere in the browser's history
  bool isBlockedPageDue_ = false;                        // it was given to the browser and has not arrived
  std::string requested_;                                // the address given to the browser last
  std::uint64_t navigation_ = 0;                         // number of the newest one
};

}  // namespace quillon
