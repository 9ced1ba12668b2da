// The interface to a browser engine, implemented by a toolkit.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "ui/Common/WebView/SubresourceGate.h"

namespace quillon {

// Receives the main frame's navigations, including those started by the page or its history. Called on the main queue
// from within the surface's event handling; meanwhile it may call only title(), address() and runScript() of the
// surface.
class WebNavigationDelegate {
 public:
  virtual ~WebNavigationDelegate() = default;

  enum class Policy { allow, cancel };
  enum class Target {
    thisView,
    newWindow,  // a window requested by the page: always cancelled; an allowed URL opens in this view instead
  };
  // Called before every request of a navigation or redirect, with the engine's spelling of the URL. Also called when a
  // page from loadHtml() loads or is revisited through the history, with the engine's URL for it:
  // "data:...,<percent-encoded text>" or "about:blank".
  virtual Policy decidePolicy(std::string_view address, Target target) = 0;

  virtual void didStartProvisionalNavigation() = 0;
  virtual void didFinish() = 0;
  // `error` is for the log; empty if the navigation was cancelled.
  virtual void didFail(std::string_view error) = 0;
  virtual void didFailProvisionalNavigation(std::string_view error) = 0;
};

// Main queue only. No operation blocks; the delegate reports progress. Denies all permissions that pages request, and
// all downloads. Destruction cancels everything, without further calls.
class WebSurface {
 public:
  virtual ~WebSurface() = default;

  // Called once, before anything else. The delegate owns the surface, and its observers may destroy it: after a report
  // the surface may be gone once it releases the delegate. The gate is consulted on the requesting thread before every
  // other request of a page (frames, images, scripts, fetches, sockets, prefetches); a refused one is not sent.
  virtual void attach(std::weak_ptr<WebNavigationDelegate> delegate, std::shared_ptr<const SubresourceGate> gate) = 0;

  // A URL that has passed the link filter.
  virtual void load(const std::string& address) = 0;
  // A complete UTF-8 page, without a URL of its own.
  virtual void loadHtml(const std::string& html) = 0;
  virtual void reload() = 0;
  virtual void stop() = 0;
  virtual void goBack() = 0;
  virtual void goForward() = 0;
  virtual bool canGoBack() const = 0;
  virtual bool canGoForward() const = 0;

  // Of the present page. The title is empty if it has none; the address of a page from loadHtml() is neither http nor
  // https.
  virtual std::string title() const = 0;
  virtual std::string address() const = 0;

  // Evaluates a script in the present page, isolated from the page's own scripts if the engine supports that. Calls
  // back asynchronously on the main queue, at most once: with the result, or an empty text if it is not a string; never
  // after the surface's destruction.
  virtual void runScript(const std::string& script, std::function<void(std::string result)> done) = 0;
};

}  // namespace quillon
