// The browser that a web view shows its pages in: what a toolkit supplies.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "ui/Common/WebView/SubresourceGate.h"

namespace quillon {

// Learns from the surface what becomes of navigations of the main frame, those that the page or its history begin
// included. Called on the main queue, from within the surface's own event handling; does not call back into it
// meanwhile but for title(), address() and runScript().
class WebNavigationDelegate {
 public:
  virtual ~WebNavigationDelegate() = default;

  enum class Policy { allow, cancel };
  enum class Target {
    thisView,
    newWindow,  // a window that the page wants opened: always cancelled; what may be shown opens in this view instead
  };
  // Asked before every navigation and every redirect makes a request; the address is the engine's own text of it. Also
  // asked when a page given to loadHtml() is loaded, or comes back by way of the history, under the address that the
  // engine gives it: "data:...,<percent-encoded text>" or "about:blank".
  virtual Policy decidePolicy(std::string_view address, Target target) = 0;

  virtual void didStartProvisionalNavigation() = 0;
  virtual void didFinish() = 0;
  // The error in words, for the log. A navigation that was cancelled is over, but did not fail: the text is empty.
  virtual void didFail(std::string_view error) = 0;
  virtual void didFailProvisionalNavigation(std::string_view error) = 0;
};

// For the main queue only. No operation blocks: pages are shown later, and the delegate hears of it. No permission that
// a page asks for is granted, and nothing is downloaded. Destroying it ends everything it does, without another call.
class WebSurface {
 public:
  virtual ~WebSurface() = default;

  // Called once, before anything else. The delegate owns the surface, and its observers may release it: the surface may
  // be gone when it lets go of the delegate after a report. The gate is asked before every request of a page that is
  // not a navigation of the main frame (frames, images, scripts, fetches, sockets, prefetches), by whichever thread
  // makes it; what it does not allow is not requested.
  virtual void attach(std::weak_ptr<WebNavigationDelegate> delegate, std::shared_ptr<const SubresourceGate> gate) = 0;

  // An address that has passed the link filter.
  virtual void load(const std::string& address) = 0;
  // A whole page in UTF-8, without an address of its own.
  virtual void loadHtml(const std::string& html) = 0;
  virtual void reload() = 0;
  virtual void stop() = 0;
  virtual void goBack() = 0;
  virtual void goForward() = 0;
  virtual bool canGoBack() const = 0;
  virtual bool canGoForward() const = 0;

  // Of the page on screen. The title is empty when the page has none; the address of a page given to loadHtml() is
  // anything but http and https.
  virtual std::string title() const = 0;
  virtual std::string address() const = 0;

  // Evaluates a script in the page on screen, beyond the reach of the page's own scripts where the engine can. Calls
  // back later, on the main queue, at most once: with the result when it is a text, else with an empty one; not at all
  // when the surface is gone.
  virtual void runScript(const std::string& script, std::function<void(std::string result)> done) = 0;
};

}  // namespace quillon
