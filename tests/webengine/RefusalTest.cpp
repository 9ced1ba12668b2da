// No page, whatever it tries, makes the engine talk to a server that is not allowed.
#include "tests/webengine/WebWorld.h"

namespace quillon::test {
namespace {

struct Attempt {
  const char* name;
  const char* body;
};

TEST_F(WebWorld, LetsNoRequestOfAPageReachARefusedServer) {
  // Each tries the refused server first. Then it asks the other one for $PROBE: in the same way, so that this way is
  // known to be one, or once the first try is known to be over.
  const Attempt attempts[] = {
      {"image", "<img src=$REFUSED/a><img src=$PROBE>"},
      {"style", "<link rel=stylesheet href=$REFUSED/a><link rel=stylesheet href=$PROBE>"},
      {"import", "<style>@import '$REFUSED/a'; @import '$PROBE'</style>"},
      {"background", "<p style='background:url($REFUSED/a),url($PROBE)'>"},
      {"font", "<style>@font-face{font-family:f;src:url($REFUSED/a),url($PROBE)}</style><p style=font-family:f>a"},
      {"script", "<script src=$REFUSED/a></script><script src=$PROBE></script>"},
      {"module", "<script type=module src=$REFUSED/a></script><script type=module src=$PROBE></script>"},
      {"video", "<video src=$REFUSED/a></video><video src=$PROBE></video>"},
      {"object", "<object data=$REFUSED/a></object><object data=$PROBE></object>"},
      {"embed", "<embed src=$REFUSED/a><embed src=$PROBE>"},
      {"frame", "<iframe src=$REFUSED/a></iframe><iframe src=$PROBE></iframe>"},
      {"frame-moved", "<iframe src=/away></iframe><iframe src=$PROBE></iframe>"},
      {"frame-within", "<iframe srcdoc='<img src=$REFUSED/a><img src=$PROBE>'></iframe>"},
      {"frame-of-data", "<iframe src='data:text/html,<img src=$REFUSED/a><img src=$PROBE>'></iframe>"},
      {"frame-form",
       "<iframe name=f></iframe><form id=g method=post target=f action=$REFUSED/a></form>"
       "<iframe name=h></iframe><form id=i method=post target=h action=$PROBE></form>"
       "<script>g.submit();i.submit()</script>"},
      {"icon", "<link rel=icon href=$REFUSED/a><link rel=manifest href=$REFUSED/a><img src=$PROBE>"},
      {"prefetch", "<link rel=prefetch href=$REFUSED/a><link rel=prefetch href=$PROBE>"},
      {"preload", "<link rel=preload as=image href=$REFUSED/a><link rel=preload as=image href=$PROBE>"},
      {"preconnect", "<link rel=preconnect href=$REFUSED><img src=$PROBE>"},
      {"prerender",
       "<link rel=dns-prefetch href=$REFUSED><link rel=prerender href=$REFUSED/a>"
       "<script type=speculationrules>{\"prerender\":[{\"source\":\"list\",\"urls\":[\"$REFUSED/a\"]}]}</script>"
       "<img src=$PROBE>"},
      {"fetch", "<script>fetch('$REFUSED/a',{mode:'no-cors'}).catch(()=>fetch('$PROBE'))</script>"},
      {"fetch-moved", "<script>fetch('/away',{mode:'no-cors'}).catch(()=>fetch('$PROBE'))</script>"},
      {"preflight", "<script>fetch('$REFUSED/a',{method:'PUT'}).catch(()=>fetch('$PROBE'))</script>"},
      {"events", "<script>new EventSource('$REFUSED/a');new EventSource('$PROBE')</script>"},
      {"beacon", "<script>navigator.sendBeacon('$REFUSED/a','x');navigator.sendBeacon('$PROBE','x')</script>"},
      {"socket", "<script>new WebSocket('ws://$HOST/a').onerror=()=>fetch('$PROBE')</script>"},
      {"transport",
       "<script>try{new WebTransport('https://$HOST/a').ready.catch(()=>fetch('$PROBE'))}catch{fetch('$PROBE')}"
       "</script>"},
      {"worker-transport",
       "<script>new Worker(URL.createObjectURL(new Blob([\"new WebTransport('https://$HOST/a').ready"
       ".catch(()=>postMessage(1))\"]))).onmessage=window.w=()=>fetch('$PROBE');"
       "new Worker(URL.createObjectURL(new Blob([\"postMessage(typeof WebTransport)\"])))"
       ".onmessage=e=>e.data=='undefined'&&w()</script>"},
      {"peer",
       "<script>function peer(w,turn){const p=new w.RTCPeerConnection({iceServers:[{urls:'stun:$HOST'},"
       "{urls:turn,username:'u',credential:'c'}]});p.createDataChannel('c');"
       "p.onicegatheringstatechange=()=>p.iceGatheringState=='complete'&&fetch('$PROBE');"
       "p.createOffer().then(o=>p.setLocalDescription(o))}"
       "try{peer(window,'turn:$HOST?transport=tcp')}catch{fetch('$PROBE')}</script>"},
      {"peer-of-frame",
       "<iframe id=fresh></iframe><script>try{peer(fresh.contentWindow,'turn:$HOST')}catch{}</script>"
       "<img src=$PROBE>"},
      {"worker", "<script>new Worker('/worker.js')</script>"},
      {"worker-from-afar",
       "<script>new Worker(URL.createObjectURL(new Blob([\"try{importScripts('$REFUSED/a')}catch{fetch('$PROBE')}\"])))"
       "</script>"},
      {"shared-worker", "<script>new SharedWorker('/shared.js')</script>"},
      {"service-worker", "<script>navigator.serviceWorker.register('/service.js')</script>"},
  };
  const std::string worker = "fetch('$REFUSED/a',{mode:'no-cors'}).catch(()=>fetch('/probe/";
  serve("/worker.js", worker + "worker'))");
  serve("/shared.js", worker + "shared-worker'))");
  serve("/service.js", worker + "service-worker'))");
  serve("/away", "", {{"Location", "$REFUSED/a"}}, 302);
  std::string page = "<title>Attempts</title><body>";
  const auto isOpen = [](std::string_view name) {
    return !isEngineClosed && (name.find("transport") != name.npos || name.starts_with("peer"));
  };
  for (const auto& [name, body] : attempts) {
    if (!isOpen(name)) page += replaced(body, "$PROBE", "$ALLOWED/probe/" + std::string(name)) + "\n";
  }
  serve("/page", page, {{"Content-Security-Policy-Report-Only", "img-src 'none'; report-uri $REFUSED/a"}});
  open("$ALLOWED/page");
  shows("Attempts");
  for (const auto& [name, body] : attempts) {
    if (isOpen(name)) continue;
    EXPECT_TRUE(await([&, probe = "/probe/" + std::string(name)] { return allowed.saw(probe); })) << name;
  }
  // An engine that is not closed opens connections ahead of requests, at a page's hint or at times without.
  EXPECT_EQ(isEngineClosed ? refused.contacts() : replaced(refused.contacts(), "connection ", ""), "");
}

TEST_F(WebWorld, ShowsTheBlockedPageForEveryWayToARefusedServer) {
  struct Case {
    Attempt attempt;
    const char* address = "$AWAY";
    bool isClicked = false;
    httplib::Headers headers = {};
  };
  // A link that covers the page.
#define LINK "<a style='position:fixed;inset:0' "
  const Case cases[] = {
      {{"redirect", ""}, "$AWAY", false, {{"Location", "$AWAY"}}},
      {{"header", ""}, "$AWAY", false, {{"Refresh", "0;url=$AWAY"}}},
      {{"meta refresh", "<meta http-equiv=refresh content='0;url=$AWAY'>"}},
      {{"script", "<script>location='$AWAY'</script>"}},
      {{"frame", "<iframe srcdoc=\"<script>top.location='$AWAY'</script>\"></iframe>"}},
      {{"get", "<form action=$AWAY></form><script>document.forms[0].submit()</script>"}, "$AWAY?"},
      {{"post", "<form method=post action=$AWAY></form><script>document.forms[0].submit()</script>"}},
      {{"post moved", "<form method=post action=/moved></form><script>document.forms[0].submit()</script>"},
       "$REFUSED/moved"},
      {{"blob", "<script>location=URL.createObjectURL(new Blob(['x']))</script>"}, "blob:"},
      {{"mail", LINK "href=mailto:a@b.example>a</a>"}, "mailto:a@b.example", true},
      {{"link", LINK "href=$AWAY>a</a>"}, "$AWAY", true},
      {{"window", LINK "target=_blank href=$AWAY>a</a>"}, "$AWAY", true},
      {{"script's window", LINK "onclick=\"window.open('$AWAY')\">a</a>"}, "$AWAY", true},
      {{"javascript", LINK "href=\"javascript:void(location='$AWAY')\">a</a>"}, "$AWAY", true},
      {{"download", LINK "download href=$AWAY>a</a>"}, "$AWAY", true},
      {{"ping", LINK "ping=$REFUSED/ping href=$AWAY>a</a>"}, "$AWAY", true},
  };
#undef LINK
  serve("/moved", "", {{"Location", "$REFUSED/moved"}}, 307);
  int number = 0;
  for (auto [attempt, address, isClicked, headers] : cases) {
    SCOPED_TRACE(attempt.name);
    const std::string path = "/" + std::to_string(++number);
    const auto withAddress = [&](std::string text) { return replaced(std::move(text), "$AWAY", "$REFUSED" + path); };
    for (auto& [name, value] : headers) value = withAddress(value);
    serve(path, withAddress("<title>" + path + "</title><body>" + attempt.body), headers,
          headers.contains("Location") ? 302 : 200);
    open("$ALLOWED" + path);
    if (isClicked) {
      shows(path);
      paints();
      click();
    }
    EXPECT_TRUE(await([&] { return evaluate(blockedAddress).starts_with(filled(withAddress(address))); }));
    shows(blockedTitle);
  }
  EXPECT_EQ(refused.contacts(), "");
}

}  // namespace
}  // namespace quillon::test
