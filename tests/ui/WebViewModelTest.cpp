#include "ui/Common/WebView/WebViewModel.h"

#include <map>

#include "platform/ScreenServices.h"
#include "platform/memory/FixedHostApplication.h"
#include "tests/ui/OnMainQueue.h"

namespace quillon::test {
namespace {

using Target = WebNavigationDelegate::Target;

// A browser without a network and a history: pages consist of a title. It works like an engine: later on the main
// queue, asking the delegate before every step. What headings and the history do is in the tests of the real one.
class ScriptedBrowser : public WebSurface {
 public:
  struct Page {
    std::string title = {};
    std::string redirect = {};
    std::string error = {};  // with which loading it fails
  };
  struct State {
    std::map<std::string, Page> pages;
    std::vector<std::string> loads;  // what was asked for by load(), in order
    std::string shown;               // the address of the page on screen
    std::function<void()> heldScript;
    bool holdsScripts = false;
    std::weak_ptr<WebNavigationDelegate> delegate;
    std::shared_ptr<const SubresourceGate> gate;
    std::shared_ptr<Executor> main;
  };
  explicit ScriptedBrowser(std::shared_ptr<State> state) : state_(std::move(state)) {}

  void attach(std::weak_ptr<WebNavigationDelegate> delegate, std::shared_ptr<const SubresourceGate> gate) override {
    state_->delegate = std::move(delegate);
    state_->gate = std::move(gate);
  }
  void load(const std::string& address) override {
    state_->loads.push_back(address);
    later([state = state_, address] { navigate(*state, address); });
  }
  void loadHtml(const std::string& html) override {
    later([state = state_, html] { navigate(*state, dataAddress(html)); });
  }
  void reload() override {}
  void stop() override {}
  void goBack() override {}
  void goForward() override {}
  bool canGoBack() const override { return false; }
  bool canGoForward() const override { return false; }
  std::string title() const override { return state_->pages[address()].title; }
  std::string address() const override { return state_->shown; }
  void runScript(const std::string& script, std::function<void(std::string)> done) override {
    EXPECT_EQ(script, "document.querySelector('h1').innerText");
    auto answer = [done = std::move(done)] { done(""); };
    if (state_->holdsScripts) {
      state_->heldScript = std::move(answer);
    } else {
      later(std::move(answer));
    }
  }

  // What a page or a tap asks for.
  static void navigate(State& state, std::string address, Target target = Target::thisView) {
    const auto delegate = state.delegate.lock();
    if (!delegate) return;
    const auto ask = [&] { return delegate->decidePolicy(address, target) == WebNavigationDelegate::Policy::allow; };
    if (!ask()) return delegate->didFailProvisionalNavigation("");
    delegate->didStartProvisionalNavigation();
    if (const auto redirect = state.pages[address].redirect; !redirect.empty()) {
      address = redirect;
      if (!ask()) return delegate->didFailProvisionalNavigation("");
    }
    if (const auto error = state.pages[address].error; !error.empty()) {
      delegate->didFailProvisionalNavigation(error);
      return delegate->didFail(error);
    }
    state.shown = address;
    delegate->didFinish();
  }

 private:
  static std::string dataAddress(const std::string& html) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string address = "data:text/html;charset=UTF-8,";
    for (const unsigned char byte : html) {
      if (std::isalnum(byte)) {
        address += static_cast<char>(byte);
      } else {
        address.append({'%', digits[byte >> 4], digits[byte & 15]});
      }
    }
    return address;
  }
  void later(Job job) { state_->main->post(std::move(job)); }

  const std::shared_ptr<State> state_;
};

struct WebView : OnMainQueue<WebViewModel> {
  WebView() {
    world.amend = [this](Platform& platform) {
      platform.host = std::make_shared<FixedHostApplication>(FixedHostApplication::Description{.resources = resources});
    };
    options.webviewConfig = WebViewConfig{.allowedDomains = {"https://Reader.example/news", "docs.example"}};
  }

  // On the main queue, where the hosts cannot arrive before its job is over.
  void make(bool withBrowser = true) {
    browser->main = world.platform.executors->main();
    model =
        WebViewModel::make(world.sdk->screens(), withBrowser ? std::make_unique<ScriptedBrowser>(browser) : nullptr);
  }
  void start() {
    world.start(options);
    world.onMain([this] { make(); });
  }
  void act(const std::function<void()>& action) {
    for (int i = 0; i < 3; ++i) onMain(i == 0 ? action : [] {});
  }
  void open(const std::string& address) {
    act([&] { model->loadURL(address); });
  }
  // The page on screen wants to go there.
  void follow(const std::string& address, Target target = Target::thisView) {
    act([&] { ScriptedBrowser::navigate(*browser, address, target); });
  }
  bool isBlocked() { return read(&WebViewModel::isBlockedPageShowing); }
  bool isLoading() { return read(&WebViewModel::isLoading); }
  std::string title() { return read(&WebViewModel::pageTitle); }
  bool logged(const std::string& text) { return world.log().find(text + "\n") != std::string::npos; }

  ConsentSDKOptions options = world.options();
  FixedHostApplication::Texts resources;
  std::shared_ptr<ScriptedBrowser::State> browser = std::make_shared<ScriptedBrowser::State>();
};

TEST_F(WebView, OpensWhatTheApplicationTheVendorAndTheConfigurationNameAndNothingElse) {
  bannerOf(document)["privacy_notice_link"] = "https://privacy.example/notice";
  bannerOf(document)["dsr_portal_link"] = "https://user@portal.example/";
  bannerOf(document)["banner_text"] = {{"fr", "<a href='https://Texte.example/a'>a</a>"}};
  auto& purpose = document["purposes"].as_array()[0].as_object();
  purpose["sdks"] = {{{"website", "http://meter.example"}, {"sdk_name", {{"en", "<a href=\"http://sdk.example\">"}}}}};
  world.server.serve(document);
  options.cdnUrl = world.server.url();
  start();
  for (const std::string host :
       {"docs.example", "sub.docs.example", "127.0.0.1", "quillon.example", "a.quillon-cdn.example", "privacy.example",
        "texte.example", "meter.example", "sdk.example"}) {
    open(" HTTPS://" + host);
    EXPECT_EQ(browser->loads.back(), "https://" + host + "/");
    EXPECT_TRUE(logged("[INFO]WebView: Navigation Allowed: https://" + host + "/"));
    EXPECT_FALSE(isBlocked()) << host;
  }
  const auto loads = browser->loads.size();
  for (const std::string address :
       {"https://portal.example/", "https://baddocs.example/", "mailto:a@docs.example", ""}) {
    open(address);
    EXPECT_TRUE(logged("[WARNING]WebView: Initial URL blocked by filter: " + address));
    EXPECT_TRUE(isBlocked()) << address;
  }
  EXPECT_EQ(browser->loads.size(), loads);
  open("https://evil.example/\n[INFO]WebView: Navigation Allowed: x");
  EXPECT_TRUE(logged(R"(filter: https://evil.example/\n[INFO]WebView: Navigation Allowed: x)"));
}

TEST_F(WebView, AppliesTheTestToEveryStepOfANavigation) {
  browser->pages["https://docs.example/moved"].redirect = "https://evil.example/";
  browser->pages["https://docs.example/inner"].redirect = "https://sub.docs.example/";
  start();
  open("https://docs.example/");
  follow("https://docs.example/inner");
  EXPECT_EQ(browser->shown, "https://sub.docs.example/");
  follow("https://docs.example/new", Target::newWindow);
  EXPECT_EQ(browser->shown, "https://docs.example/new") << "in the same view";
  for (const std::string address :
       {"https://evil.example/", "https://docs.example/moved", "https://evil.example/?new", "javascript:alert(1)",
        "data:text/html,<h1>Trust me</h1>", "about:blank", "https://docs.example:0/"}) {
    open("https://docs.example/");
    ASSERT_FALSE(isBlocked());
    follow(address, address.ends_with("?new") ? Target::newWindow : Target::thisView);
    EXPECT_TRUE(isBlocked()) << address;
    EXPECT_FALSE(isLoading()) << address;
    EXPECT_TRUE(browser->shown.starts_with("data:text/html;")) << address;
    const auto refused = address.ends_with("moved") ? "https://evil.example/" : address;
    EXPECT_TRUE(logged("[WARNING]WebView: Navigation blocked by filter: " + refused)) << address;
  }
  // A page cannot bring anything into the view by calling it the blocked page.
  follow("data:text/html," + std::string("<script>var BLOCKED_URL=\"x\";</script>"));
  EXPECT_TRUE(browser->shown.starts_with("data:text/html;charset=UTF-8,%3C%21DOCTYPE"));
  const auto blocked = browser->shown;
  follow(blocked, Target::newWindow);
  EXPECT_NE(browser->shown, blocked) << "the page for that address";
  browser->pages["https://docs.example/long"].title = std::string(5000, 'x');
  open("https://docs.example/long");
  EXPECT_LT(title().size(), 1100U);
  // An address in another form than ours is replaced by ours once, and then taken as it is.
  follow("https://DOCS.example");
  EXPECT_EQ(browser->loads.back(), "https://docs.example/");
  const auto loads = browser->loads.size();
  follow("https://DOCS.example");
  EXPECT_EQ(browser->loads.size(), loads);
}

TEST_F(WebView, DropsWhatComesTooLate) {
  start();
  browser->holdsScripts = true;
  open("https://docs.example/old");
  const auto titleOfOld = browser->heldScript;
  browser->pages["https://docs.example/new"].title = "New";
  open("https://docs.example/new");
  act(titleOfOld);
  EXPECT_EQ(title(), "New");

  act([&] {  // refused, but before its blocked page is shown something else is opened
    ScriptedBrowser::navigate(*browser, "https://evil.example/");
    model->loadURL("https://docs.example/new");
  });
  EXPECT_FALSE(isBlocked());

  const auto loads = browser->loads.size();
  act([&] {
    make();
    model->loadURL("https://docs.example/first");
    model->loadURL("https://docs.example/second");
  });
  EXPECT_EQ(browser->loads.size(), loads + 1);
  EXPECT_EQ(browser->loads.back(), "https://docs.example/second");

  open("https://docs.example/old");
  act([&] {
    make();
    model->loadURL("https://docs.example/never");
    model.reset();
  });
  act(browser->heldScript);
  EXPECT_EQ(browser->loads.back(), "https://docs.example/old");
}

TEST_F(WebView, SurvivesObserversThatNavigateOrReleaseIt) {
  start();
  Observation loading;
  world.onMain([&] {
    loading = model->isLoading.observe([&](bool isLoading) {
      if (!isLoading && browser->shown == "https://docs.example/1") model->loadURL("https://docs.example/2");
    });
  });
  open("https://docs.example/1");
  EXPECT_EQ(title(), "https://docs.example/2");
  act([&] {
    loading = model->isLoading.observe([&](bool) { model.reset(); });
    model->loadURL("https://docs.example/1");
  });
  EXPECT_FALSE(model);
}

TEST_F(WebView, LogsNavigationErrorsAndShowsNone) {
  browser->pages["https://docs.example/"].error = "name\nnot resolved";
  start();
  open("https://docs.example/");
  EXPECT_TRUE(logged("[ERROR]Provisional navigation error: name\\nnot resolved"));
  EXPECT_TRUE(logged("[ERROR]Navigation error: name\\nnot resolved"));
  EXPECT_FALSE(isLoading() || isBlocked());
}

TEST_F(WebView, ShowsTheApplicationsBlockedPageOrSaysThatItIsMissing) {
  resources = {{"mine.html", "<head></head>mine"}, {"bytes.html", "<head></head>\xff"}};
  options.webviewConfig->blockedPageHTML = "mine.html";
  start();
  open("https://evil.example/");
  EXPECT_TRUE(browser->shown.ends_with("%3C%2Fhead%3Emine"));
  EXPECT_TRUE(isBlocked());
  for (const std::string name : {"gone", "bytes"}) {
    options.webviewConfig->blockedPageHTML = name;
    start();
    open("https://evil.example/");
    EXPECT_TRUE(browser->shown.ends_with("%3C%2Fhtml%3E%0A")) << name;
    EXPECT_TRUE(logged("[WARNING]WebView: " + name + ".html not found in bundle"));
  }
}

TEST_F(WebView, LetsNetworkThreadsAskAboutSubresources) {
  start();
  const auto gate = browser->gate;
  std::thread network([&] {
    while (!gate->allowsSubresource("https://sub.docs.example/style.css")) std::this_thread::yield();
  });
  open("https://docs.example/");
  network.join();
  act([&] { model.reset(); });
  EXPECT_TRUE(gate->allowsSubresource("data:image/png;base64,AAAA"));
  for (const auto* refused : {"https://evil.example/", "wss://docs.example/", "blob:https://docs.example/1", ""}) {
    EXPECT_FALSE(gate->allowsSubresource(refused)) << refused;
  }
}

TEST_F(WebView, WithoutABrowserOpensNothingAndSaysSo) {
  world.start(options);
  world.onMain([this] { make(false); });
  open("https://docs.example/");
  EXPECT_TRUE(logged("[WARNING]No browser is linked, the link is not opened: https://docs.example/"));
  act([&] {
    for (const auto control :
         {&WebViewModel::refresh, &WebViewModel::stop, &WebViewModel::goBack, &WebViewModel::goForward}) {
      ((*model).*control)();
    }
  });
  EXPECT_FALSE(model->canGoBack() || model->canGoForward());
}

}  // namespace
}  // namespace quillon::test
