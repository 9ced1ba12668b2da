// What becomes of the pages that may be shown.
#include <QTest>
#include <filesystem>

#include "tests/webengine/WebWorld.h"
#include "ui/Common/Labels/Languages.h"

namespace quillon::test {
namespace {

TEST_F(WebWorld, TellsWhatIsOnScreenAndMovesThroughTheHistory) {
  serve("/title", "<title>A title</title><h1>A heading</h1>");
  serve("/heading", "<h1>A <b>heading</b></h1>");
  serve("/plain", "<p>Text");
  const std::string refusedLink = filled("$REFUSED/\"quoted\"\\");
  open("$ALLOWED/title");
  shows("A title");
  EXPECT_EQ(sheet("host"), "127.0.0.1");
  EXPECT_FALSE(sheet("canGoBack").toBool());
  open("$ALLOWED/heading");
  shows("A heading");
  open(refusedLink);
  shows(blockedTitle);
  EXPECT_EQ(evaluate(blockedAddress), refusedLink);
  EXPECT_EQ(sheet("host"), "");
  open("$ALLOWED/plain");
  const std::string plain = allowed.url("/plain");
  shows(plain);
  for (const auto& [button, title] : {std::pair<const char*, std::string>{"Go Backward", blockedTitle},
                                      {"Refresh", blockedTitle},
                                      {"Go Backward", "A heading"},
                                      {"Go Forward", blockedTitle},
                                      {"Go Forward", plain}}) {
    screens.use(button);
    shows(title);
    if (title == blockedTitle) {
      EXPECT_EQ(evaluate(blockedAddress), refusedLink) << button;
    }
  }
  EXPECT_FALSE(sheet("canGoForward").toBool());
  screens.use("Close");
  EXPECT_TRUE(screens.isGone());
  EXPECT_EQ(refused.contacts(), "");
}

TEST_F(WebWorld, TheBlockedPageFollowsTheUsersLanguageAndItsDirection) {
  auto options = screens.world.options();
  options.languageCode = "ar";
  screens.world.start(options);
  open("$REFUSED/");
  shows(std::string(labelLanguage("ar")->text(Label::pageBlocked)));
  EXPECT_EQ(evaluate("document.documentElement.lang"), "ar");
  EXPECT_EQ(evaluate("getComputedStyle(document.querySelector('main')).direction"), "rtl");
  EXPECT_EQ(evaluate("getComputedStyle(document.getElementById('address')).direction"), "ltr");
}

TEST_F(WebWorld, GrantsAPageNothing) {
  serve("/page", R"(<title>Before</title><script>
    const said = [typeof confirm('a') + confirm('a'), '' + prompt('a')]
    alert('a')
    onbeforeunload = event => event.preventDefault()
    Promise.allSettled([
      new Promise((yes, no) => navigator.geolocation.getCurrentPosition(yes, no)).catch(e => said.push('place ' + e.code)),
      Notification.requestPermission().then(answer => said.push('notification ' + answer)),
      navigator.mediaDevices.getUserMedia({video: true}).catch(e => said.push('camera refused')),
      navigator.mediaDevices.getDisplayMedia({video: true}).catch(e => said.push('screen ' + e.name)),
      navigator.clipboard.readText().catch(e => said.push('clipboard ' + e.name)),
      document.documentElement.requestFullscreen().catch(e => said.push('full screen ' + e.name)),
    ]).then(() => document.title = said.sort().join('; '))
    said.push('window ' + open('/elsewhere'))
  </script>)");
  serve("/file", "content", {{"Content-Disposition", "attachment; filename=file.txt"}});
  serve("/after", "<title>After</title>");
  open("$ALLOWED/page");
  EXPECT_TRUE(await([&] { return surface->title().find(';') != std::string::npos; }));
  EXPECT_EQ(
      surface->title(),
      "booleanfalse; camera refused; clipboard NotAllowedError; full screen TypeError; notification denied; null; "
      "place 1; screen NotAllowedError; window null");
  EXPECT_EQ(allowed.header("/page", "DNT"), "1");
  EXPECT_FALSE(allowed.saw("/elsewhere"));
  open("$ALLOWED/file");
  EXPECT_TRUE(await([&] { return allowed.saw("/file") && !isLoading(); }));
  open("$ALLOWED/after");
  shows("After");
}

TEST_F(WebWorld, RemembersNothingFromOneSheetToTheNext) {
  serve("/keep", R"(<title>Before</title><script>
    document.title = ['x' + document.cookie, 'x' + localStorage.getItem('k')].join()
    document.cookie = 'c=1; max-age=1000'
    localStorage.setItem('k', 1)
    indexedDB.open('d').onsuccess = () => caches.open('e').then(cache => cache.put('/k', new Response('k')))
  </script>)",
        {{"Cache-Control", "max-age=1000"}});
  for (const char* sheet : {"first", "second"}) {
    open("$ALLOWED/keep");
    shows("x,xnull");
    EXPECT_EQ(evaluate("document.cookie"), "c=1") << sheet << ": it is kept as long as the sheet";
    screens.use("Close");
    EXPECT_TRUE(screens.isGone());
  }
  for (const auto& entry : std::filesystem::recursive_directory_iterator(qgetenv("HOME").toStdString())) {
    EXPECT_FALSE(entry.is_regular_file()) << entry.path();
  }
}

TEST_F(WebWorld, IsWorkedByTheKeyboardAlone) {
  serve("/page", "<title>Page</title><a href=/next id=one>one</a> <a href=/next id=two>two</a>");
  serve("/next", "<title>Next</title>");
  open("$ALLOWED/page");
  shows("Page");
  paints();
  const auto place = [&] {
    return evaluate("document.hasFocus() ? document.activeElement.id : ''") +
           screens.window->activeFocusItem()->metaObject()->className() +
           screens.window->activeFocusItem()->property("text").toString().toStdString();
  };
  const auto reach = [&](const std::string& id) {
    constexpr int mostControls = 10;
    for (int i = 0; i < mostControls; ++i) {
      const auto before = place();
      if (before.starts_with(id)) return true;
      QTest::keyClick(screens.window.get(), Qt::Key_Tab);
      EXPECT_TRUE(await([&] { return place() != before; })) << before;
    }
    return false;
  };
  EXPECT_TRUE(reach("one"));
  EXPECT_TRUE(reach("two"));
  // Out of the page, through the tool bar and in again.
  QTest::keyClick(screens.window.get(), Qt::Key_Tab);
  EXPECT_TRUE(await([&] { return screens.control("Refresh")->hasActiveFocus(); }));
  EXPECT_TRUE(reach("two"));
  QTest::keyClick(screens.window.get(), Qt::Key_Return);
  shows("Next");
  paints();
  QTest::keyClick(screens.window.get(), Qt::Key_Escape);
  EXPECT_TRUE(screens.isGone());
}

TEST_F(WebWorld, ShowsNothingThatArrivesAfterItWasClosed) {
  serve("/late", "<title>Late</title>");
  allowed.hold();
  screens.world.sdk->screens()->openLink(allowed.url("/late"));
  EXPECT_TRUE(await([&] { return allowed.saw("/late"); }));
  screens.use("Close");
  EXPECT_TRUE(screens.isGone());
  allowed.release();
  open("$REFUSED/a");
  shows(blockedTitle);
  EXPECT_FALSE(sheet("canGoBack").toBool());
}

TEST_F(WebWorld, LogsWhatCannotBeShown) {
  open("http://127.0.0.1:1/");
  EXPECT_TRUE(await([&] { return screens.world.log().find("Provisional navigation error: ") != std::string::npos; }));
  EXPECT_FALSE(isLoading());
}

}  // namespace
}  // namespace quillon::test
