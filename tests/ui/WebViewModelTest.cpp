#include "ui/Common/WebView/WebViewModel.h"

#include <thread>

#include "platform/ScreenServices.h"
#include "platform/memory/FixedHostApplication.h"
#include "tests/ui/OnMainQueue.h"

namespace quillon::test {
namespace {

using Target = WebNavigationDelegate::Target;

// A browser that notes what it is told to show. What engines do with it is in the tests of the real one.
class RecordingBrowser : public WebSurface {
 public:
  struct State {
    std::vector<std::string> loads;  // addresses, and pages of ours
    std::string title;
    std::string address;
    std::function<void(std::string)> heading;  // the answer to the last script
    std::shared_ptr<const SubresourceGate> gate;
  };
  explicit RecordingBrowser(std::shared_ptr<State> state) : state_(std::move(state)) {}

  void attach(std::weak_ptr<WebNavigationDelegate>, std::shared_ptr<const SubresourceGate> gate) override {
    state_->gate = std::move(gate);
  }
  void load(const std::string& address) override { state_->loads.push_back(address); }
  void loadHtml(const std::string& html) override { state_->loads.push_back(html); }
  void reload() override {}
  void stop() override {}
  void goBack() override {}
  void goForward() override {}
  bool canGoBack() const override { return false; }
  bool canGoForward() const override { return false; }
  std::string title() const override { return state_->title; }
  std::string address() const override { return state_->address; }
  void runScript(const std::string&, std::function<void(std::string)> done) override {
    state_->heading = std::move(done);
  }

 private:
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
  void make() { model = WebViewModel::make(world.sdk->screens(), std::make_unique<RecordingBrowser>(browser)); }
  void start() {
    world.start(options);
    onMain([this] { make(); });
  }
  void open(const std::string& address) {
    onMain([&] { model->loadURL(address); });
  }
  // Whether the browser may go there.
  bool mayGo(const std::string& address, Target target = Target::thisView) {
    bool isAllowed = false;
    onMain([&] { isAllowed = model->decidePolicy(address, target) == WebNavigationDelegate::Policy::allow; });
    return isAllowed;
  }
  // The browser has shown that address.
  void shown(const std::string& address) {
    browser->address = address;
    onMain([this] { model->didFinish(); });
  }
  // Whether the page for that address is what the browser shall show.
  bool isBlocked(const std::string& address) {
    return browser->loads.back() == BlockedPage::own(std::nullopt, "en").html(address);
  }
  bool logged(const std::string& text) { return world.log().find(text + "\n") != std::string::npos; }

  ConsentSDKOptions options = world.options();
  FixedHostApplication::Texts resources;
  std::shared_ptr<RecordingBrowser::State> browser = std::make_shared<RecordingBrowser::State>();
};

TEST_F(WebView, OpensWhatTheApplicationTheVendorAndTheConfigurationNameAndNothingElse) {
  bannerOf(document)["privacy_notice_link"] = "https://privacy.example/notice";
  bannerOf(document)["dsr_portal_link"] = "https://user@portal.example/";
  bannerOf(document)["banner_text"] = {{"fr", "<a href='https://Texte.example/a'>a</a>"}};
  auto& purpose = document["purposes"].as_array()[0].as_object();
  purpose["sdks"] = {{{"website", "http://meter.example"}, {"sdk_name", {{"en", "<a href=\"http://sdk.example\">"}}}}};
  world.server.serve(document);
  start();
  for (const std::string host : {"sub.docs.example", "127.0.0.1", "quillon.example", "a.quillon-cdn.example",
                                 "privacy.example", "texte.example", "meter.example", "sdk.example"}) {
    open(" HTTPS://" + host);
    EXPECT_EQ(browser->loads.back(), "https://" + host + "/");
    EXPECT_TRUE(logged("[INFO]WebView: Navigation Allowed: https://" + host + "/"));
  }
  for (const std::string address :
       {"https://portal.example/", "https://baddocs.example/", "mailto:a@docs.example", ""}) {
    open(address);
    EXPECT_TRUE(logged("[WARNING]WebView: Initial URL blocked by filter: " + address));
    EXPECT_TRUE(isBlocked(address)) << address;
  }
  open("https://evil.example/\n[INFO]WebView: Navigation Allowed: x");
  EXPECT_TRUE(logged(R"(filter: https://evil.example/\n[INFO]WebView: Navigation Allowed: x)"));
}

TEST_F(WebView, AppliesTheTestToEveryStepOfANavigation) {
  start();
  EXPECT_FALSE(mayGo("https://docs.example/")) << "before anything was opened";
  open("https://docs.example/");
  EXPECT_TRUE(mayGo("https://docs.example/"));
  EXPECT_TRUE(mayGo("https://sub.docs.example/"));
  EXPECT_FALSE(mayGo("https://docs.example/new", Target::newWindow));
  EXPECT_EQ(browser->loads.back(), "https://docs.example/new") << "in the same view";
  // An address in another form than ours is replaced by ours once, and then taken as it is.
  EXPECT_FALSE(mayGo("https://DOCS.example"));
  EXPECT_EQ(browser->loads.back(), "https://docs.example/");
  EXPECT_TRUE(mayGo("https://DOCS.example"));
  for (const Target target : {Target::thisView, Target::newWindow}) {
    for (const std::string address :
         {"https://evil.example/", "javascript:alert(1)", "data:text/html,<script>var BLOCKED_URL=\"x\";</script>",
          "about:blank", "https://docs.example:0/"}) {
      EXPECT_FALSE(mayGo(address, target)) << address;
      EXPECT_TRUE(isBlocked(address)) << address;
      EXPECT_TRUE(logged("[WARNING]WebView: Navigation blocked by filter: " + address)) << address;
      EXPECT_TRUE(mayGo("about:blank")) << "the engine's name of our page, until that is shown";
      shown("about:blank");
      EXPECT_TRUE(read(&WebViewModel::isBlockedPageShowing));
    }
  }
  shown("https://docs.example/");
  EXPECT_FALSE(read(&WebViewModel::isBlockedPageShowing));
}

TEST_F(WebView, DropsWhatComesTooLate) {
  start();
  open("https://docs.example/old");
  shown("https://docs.example/old");
  const auto titleOfOld = browser->heading;
  open("https://docs.example/new");
  browser->title = std::string(5000, 'x');
  shown("https://docs.example/new");
  onMain([&] { titleOfOld("Old"); });
  EXPECT_TRUE(read(&WebViewModel::pageTitle).starts_with("xxx"));
  EXPECT_LT(read(&WebViewModel::pageTitle).size(), 1100U);

  onMain([&] {  // refused, but before its blocked page is shown something else is opened
    model->decidePolicy("https://evil.example/", Target::thisView);
    model->loadURL("https://docs.example/next");
  });
  EXPECT_EQ(browser->loads.back(), "https://docs.example/next");

  const auto loads = browser->loads.size();
  onMain([&] {
    make();
    model->loadURL("https://docs.example/first");
    model->loadURL("https://docs.example/second");
  });
  EXPECT_EQ(browser->loads.size(), loads + 1);
  EXPECT_EQ(browser->loads.back(), "https://docs.example/second");
  onMain([&] {
    make();
    model->loadURL("https://docs.example/never");
    model.reset();
  });
  EXPECT_EQ(browser->loads.size(), loads + 1);
}

TEST_F(WebView, ShowsTheApplicationsBlockedPageOrSaysThatItIsMissing) {
  resources = {{"mine.html", "<head></head>mine"}, {"bytes.html", "<head></head>\xff"}};
  for (const std::string name : {"mine.html", "gone", "bytes"}) {
    options.webviewConfig->blockedPageHTML = name;
    start();
    open("https://evil.example/");
    EXPECT_EQ(browser->loads.back().ends_with("</head>mine"), name == "mine.html");
    EXPECT_EQ(isBlocked("https://evil.example/"), name != "mine.html");
    EXPECT_EQ(logged("[WARNING]WebView: " + name + ".html not found in bundle"), name != "mine.html");
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
  onMain([&] { model.reset(); });
  EXPECT_TRUE(gate->allowsSubresource("data:image/png;base64,AAAA"));
  for (const auto* refused : {"https://evil.example/", "wss://docs.example/", "blob:https://docs.example/1", ""}) {
    EXPECT_FALSE(gate->allowsSubresource(refused)) << refused;
  }
}

TEST_F(WebView, WithoutABrowserOpensNothingAndSaysSo) {
  world.start(options);
  onMain([this] {
    model = WebViewModel::make(world.sdk->screens(), nullptr);
    model->loadURL("https://docs.example/");
    model->refresh();
    model->goBack();
    model->goForward();
    model->stop();
    EXPECT_FALSE(model->canGoBack() || model->canGoForward());
  });
  EXPECT_TRUE(logged("[WARNING]No browser is linked, the link is not opened: https://docs.example/"));
}

}  // namespace
}  // namespace quillon::test
