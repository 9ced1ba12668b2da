#include "ui/Common/WebView/WebViewModel.h"

#include <algorithm>
#include <boost/url/pct_string_view.hpp>
#include <utility>
#include <vector>

#include "core/Configuration/ConfiguredTexts.h"
#include "core/Logger/UnitLog.h"
#include "core/Text/Utf8.h"
#include "ui/Common/Labels/Labels.h"
#include "ui/Common/WebView/LinkAddress.h"
#include "ui/Common/WebView/WebViewUrlExtractor.h"

namespace quillon {
namespace {

constexpr const char* vendorDomains[] = {"quillon.example", "quillon-cdn.example"};
constexpr const char* headingScript = "document.querySelector('h1').innerText";
constexpr std::size_t longestTitle = 1024;
constexpr std::size_t longestDataAddress = std::size_t{4} << 20;

std::set<std::string> hostsOfLinks(const MainConfiguration& configuration) {
  std::set<std::string> hosts;
  forEachLink(configuration, NoPath(), [&hosts](NoPath, const std::string& address) {
    if (auto link = parseLink(address)) hosts.insert(std::move(link->host.text));
  });
  forEachText(configuration, NoPath(), [&hosts](NoPath, const LocalizedText& text) {
    for (const auto& [language, html] : text) hosts.merge(WebViewUrlExtractor().extractHosts(html));
  });
  return hosts;
}

// Empty for an invalid escape, which engines do not produce.
std::string percentDecoded(std::string_view text) {
  const auto escaped = boost::urls::make_pct_string_view(text);
  return escaped ? escaped->decode() : std::string();
}

// Required before the first URL can be tested.
struct Gathered {
  std::set<std::string> hosts;
  BlockedPage blockedPage;
};

Gathered gather(const ScreenContent& content, ScreenServices& sdk) {
  const auto& configuration = content.configuration;
  const auto options = sdk.options();
  const auto name = options && options->webviewConfig ? options->webviewConfig->blockedPageHTML : std::nullopt;
  auto page = name ? BlockedPage::configured(*name, sdk.host(), UnitLog(sdk.logger(), unit::webView)) : std::nullopt;
  return {configuration ? hostsOfLinks(*configuration) : std::set<std::string>(),
          page ? std::move(*page) : BlockedPage::own(content.banner, languageOfLabels(sdk))};
}

// The page's title, truncated to fit into a header.
std::string asTitle(std::string_view text) {
  std::string title;
  while (!text.empty()) {
    const std::size_t length = utf8Length(text);
    if (title.size() + length > longestTitle) return title + "…";
    title.append(text.substr(0, length));
    text.remove_prefix(std::max<std::size_t>(length, 1));
  }
  return title;
}

}  // namespace

WebViewModel::WebViewModel(std::shared_ptr<ScreenServices> sdk, std::unique_ptr<WebSurface> surface)
    : sdk_(std::move(sdk)), log_(sdk_->logger(), unit::webView), webView_(std::move(surface)) {}

std::shared_ptr<WebViewModel> WebViewModel::make(std::shared_ptr<ScreenServices> sdk,
                                                 std::unique_ptr<WebSurface> surface) {
  const std::shared_ptr<WebViewModel> model(new WebViewModel(std::move(sdk), std::move(surface)));
  if (!model->webView_) return model;
  model->webView_->attach(model, model->gate_);
  model->cdnHostsTask_ =
      LoadTask::startWithContent(model->sdk_, std::weak_ptr(model), gather, [](WebViewModel& self, Gathered gathered) {
        self.cachedCdnHosts_ = std::move(gathered.hosts);
        self.blockedPage_ = std::move(gathered.blockedPage);
        if (self.waiting_) self.loadURL(*std::exchange(self.waiting_, {}));
      });
  return model;
}

// The application's entries come first, so that a long configuration cannot displace them.
std::shared_ptr<const LinkFilter> WebViewModel::allowedLinks() const {
  std::vector<std::string> entries(std::begin(vendorDomains), std::end(vendorDomains));
  if (const auto options = sdk_->options()) {
    entries.insert(entries.end(), {options->appUrl, options->cdnUrl});
    if (const auto& config = options->webviewConfig) {
      entries.insert(entries.end(), config->allowedDomains.begin(), config->allowedDomains.end());
    }
  }
  entries.insert(entries.end(), cachedCdnHosts_->begin(), cachedCdnHosts_->end());
  return std::make_shared<const LinkFilter>(entries);
}

void WebViewModel::loadURL(std::string urlString) {
  constexpr std::string_view function = "loadURL(urlString:)";
  ++navigation_;
  if (!webView_) {
    log_(LogLevel::warning, "No browser is linked, the link is not opened: " + escapedForLog(urlString), function);
    return;
  }
  if (!cachedCdnHosts_) {
    waiting_ = std::move(urlString);
    return;
  }
  filter_ = allowedLinks();
  gate_->open(filter_);
  if (const auto link = filter_->test(urlString)) {
    log_(LogLevel::info, "WebView: Navigation Allowed: " + escapedForLog(*link), function);
    open(*link);
  } else {
    log_(LogLevel::warning, "WebView: Initial URL blocked by filter: " + escapedForLog(urlString), function);
    showBlockedPage(urlString);
  }
}

void WebViewModel::open(const std::string& link) {
  requested_ = link;
  webView_->load(link);
}

void WebViewModel::showBlockedPage(std::string_view address) {
  if (!blockedPage_) return;
  hasShownBlockedPage_ = true;
  isBlockedPageDue_ = true;
  webView_->loadHtml(blockedPage_->html(address));
}

bool WebViewModel::isBlockedPage(std::string_view address) const {
  if (!hasShownBlockedPage_) return false;
  if (isBlockedPageDue_ && address == "about:blank") return true;
  // A page can navigate to such a URL as well, but then shows the same page with another address in it.
  if (!address.starts_with("data:") || address.size() > longestDataAddress) return false;
  const auto comma = address.find(',');
  return comma != std::string_view::npos && blockedPage_->isPage(percentDecoded(address.substr(comma + 1)));
}

WebViewModel::Policy WebViewModel::decidePolicy(std::string_view address, Target target) {
  if (target == Target::thisView && isBlockedPage(address)) return Policy::allow;
  ++navigation_;
  const auto link = filter_ ? filter_->test(address) : std::unexpected(LinkRefusal::notAllowed);
  if (!link) {
    log_(LogLevel::warning, "WebView: Navigation blocked by filter: " + escapedForLog(address),
         "webView(_:decidePolicyFor:)");
    later([refused = std::string(address)](WebViewModel& self) { self.showBlockedPage(refused); });
    return Policy::cancel;
  }
  // The engine may spell the URL in its own way, which another request would not change.
  if (target == Target::thisView && (*link == address || *link == requested_)) return Policy::allow;
  later([link = *link](WebViewModel& self) { self.open(link); });
  return Policy::cancel;
}

void WebViewModel::later(std::move_only_function<void(WebViewModel&)> act) {
  sdk_->onMain([weak = weak_from_this(), navigation = navigation_, act = std::move(act)]() mutable {
    const auto self = weak.lock();
    if (self && self->navigation_ == navigation) act(*self);
  });
}

// Observers of the properties set below may start another navigation, or release the model, which the reporting surface
// keeps alive.

void WebViewModel::didStartProvisionalNavigation() {
  isLoading.set(true);
}

void WebViewModel::didFinish() {
  const auto navigation = navigation_;
  isBlockedPageDue_ = false;
  navigationEnded();
  if (navigation == navigation_) takeTitle();
}

void WebViewModel::didFail(std::string_view error) {
  if (!error.empty()) {
    log_(LogLevel::error, "Navigation error: " + escapedForLog(error), "webView(_:didFail:withError:)");
  }
  navigationEnded();
}

void WebViewModel::didFailProvisionalNavigation(std::string_view error) {
  if (!error.empty()) {
    log_(LogLevel::error, "Provisional navigation error: " + escapedForLog(error),
         "webView(_:didFailProvisionalNavigation:withError:)");
  }
  navigationEnded();
}

void WebViewModel::navigationEnded() {
  const std::string address = webView_->address();
  isBlockedPageShowing.set(hasShownBlockedPage_ && !address.starts_with("http:") && !address.starts_with("https:"));
  isLoading.set(false);
}

void WebViewModel::takeTitle() {
  const bool isBlocked = isBlockedPageShowing.get();
  if (const std::string title = webView_->title(); !isBlocked && !title.empty()) return pageTitle.set(asTitle(title));
  webView_->runScript(headingScript,
                      [weak = weak_from_this(), navigation = navigation_, isBlocked](const std::string& heading) {
                        const auto self = weak.lock();
                        if (!self || self->navigation_ != navigation) return;
                        const WebSurface& page = *self->webView_;
                        const std::string substitute = isBlocked ? page.title() : page.address();
                        self->pageTitle.set(asTitle(heading.empty() ? substitute : heading));
                      });
}

void WebViewModel::refresh() {
  if (!webView_) return;
  ++navigation_;
  webView_->reload();
}

void WebViewModel::stop() {
  waiting_.reset();
  if (!webView_) return;
  ++navigation_;
  webView_->stop();
}

void WebViewModel::goBack() {
  if (!webView_) return;
  ++navigation_;
  webView_->goBack();
}

void WebViewModel::goForward() {
  if (!webView_) return;
  ++navigation_;
  webView_->goForward();
}

}  // namespace quillon
