// What pages are told of privacy signals and of the trade's strings.
#include "platform/KeyValueSuite.h"
#include "quillon/SignalPublisher.h"
#include "tests/signals/VendorListOf.h"
#include "tests/webengine/WebWorld.h"

namespace quillon::test {
namespace {

TEST_F(WebWorld, TellsEveryPageFrameAndRequestOfGlobalPrivacyControl) {
  serve("/page", R"(<script>
    const said = [navigator.globalPrivacyControl]
    addEventListener('message', event => { document.title = [...said, event.data].join() })
    try { Object.defineProperty(navigator, 'globalPrivacyControl', {value: false}) } catch (error) {}
  </script><img src=/image><iframe src=/frame></iframe>)");
  serve("/frame",
        "<script>parent.postMessage(navigator.globalPrivacyControl + ' ' + typeof RTCPeerConnection, '*')</script>");
  serve("/moved", "", {{"Location", "/page"}}, 302);
  open("$ALLOWED/moved");
  EXPECT_TRUE(await([&] { return surface->title() == "true,true undefined"; })) << surface->title();
  for (const char* path : {"/moved", "/page", "/frame", "/image"}) {
    EXPECT_TRUE(await([&] { return allowed.saw(path); }));
    EXPECT_EQ(allowed.header(path, "Sec-GPC"), "1") << path;
  }
}

// A page that runs two scripts one after the other, and asks in between.
TEST_F(WebWorld, ThePagesInterfacesAnswerAPageAndItsFrames) {
  ConsentSDK& sdk = *screens.world.sdk;
  const SignalPublisher publisher(
      sdk,
      {.cmpId = 12,
       .tcf = TcfOptions{.purposes = {{1, {.consent = {1, 8}}}},
                         .vendorList = signals::test::vendorListOf(R"("10":{"id":10,"name":"Ads","purposes":[1,8]})")}},
      signalDefaultsIn(screens.world.platform.store->open("defaults", {}).value()));
  const auto script = [&] { return sdk.consentScript().get(); };
  const std::string before = script();
  sdk.set({.purposeId = 1}, ConsentStatus::granted);
  const std::string granted = script();
  sdk.set({.purposeId = 1}, ConsentStatus::declined);
  const std::string declined = script();
  ASSERT_NE(granted.find("tcString"), std::string::npos);

  serve("/page", "<script>" + before + R"(</script><script>
    const said = []
    const tell = (...words) => said.push(words.map(word => typeof word === 'string' ? word : JSON.stringify(word)).join(' '))
    let first
    __tcfapi('ping', 2, (ping, ok) => tell('ping', ping.gdprApplies, ping.cmpId, ping.cmpStatus, ping.gvlVersion, ok))
    __tcfapi('addEventListener', 2, (data, ok) => {
      first = data.listenerId
      tell('tcf', data.eventStatus || 'none', data.tcString.length > 20, data.purpose.consents, ok)
    })
    __tcfapi('addEventListener', 2, () => { throw new Error('a page that fails') })
    __gpp('addEventListener', event => tell('gpp', event.eventName, event.data, event.pingData.signalStatus))
    __gpp('hasSection', has => tell('has', has), 'tcfeuv2')
    __tcfapi('nonsense', 2, (data, ok) => tell('nonsense', data, ok))
    __tcfapi('ping', 1, (data, ok) => tell('version', data, ok))
    __gpp('toString', (data, ok) => tell('inherited', data, ok))
  </script><script>)" +
                     granted + R"(</script><script>
    __gpp('ping', ping => tell('sections', ping.applicableSections, ping.parsedSections.tcfeuv2[0].PurposesConsent))
    __gpp('getField', (value, ok) => tell('field', value, ok), 'tcfeuv2.CmpId')
    __gpp('getField', (value, ok) => tell('date', value instanceof Date, ok), 'tcfeuv2.Created')
    __gpp('getSection', (value, ok) => tell('section', value, ok), 'usnat')
    __tcfapi('removeEventListener', 2, ok => tell('removed', ok), first)
    __tcfapi('removeEventListener', 2, ok => tell('removed', ok), first)
  </script><script>)" +
                     declined + R"(</script><script>
    __tcfapi('addEventListener', 2, data => tell('declined', data.eventStatus, data.purpose.consents))
    addEventListener('message', event => {
      if (!event.data.done) return
      tell('frame', event.data.done)
      document.title = said.join('; ')
    })
  </script><iframe src=/frame></iframe>)");
  serve("/frame", R"(<script>
    addEventListener('message', event => {
      const answer = JSON.parse(event.data).__tcfapiReturn
      parent.postMessage({done: [answer.callId, answer.success, answer.returnValue.cmpId, !!parent.frames.__tcfapiLocator]}, '*')
    })
    addEventListener('load', () =>
      parent.postMessage(JSON.stringify({__tcfapiCall: {command: 'ping', version: 2, callId: 7}}), '*'))
  </script>)");
  open("$ALLOWED/page");
  EXPECT_TRUE(await([&] { return surface->title().find("frame") != std::string::npos; })) << surface->title();
  EXPECT_EQ(surface->title(),
            "ping true 12 loaded 48 true; tcf none false {} true; "
            "gpp listenerRegistered true not ready; has false; nonsense null false; version null false; "
            "inherited null false; "
            "tcf useractioncomplete true {\"1\":true,\"8\":true} true; "
            "gpp signalStatus not ready not ready; gpp sectionChange tcfeuv2 not ready; gpp signalStatus ready ready; "
            "sections [2] [1,8]; field 12 true; date true true; section null true; removed true; removed false; "
            "gpp signalStatus not ready not ready; gpp sectionChange tcfeuv2 not ready; gpp signalStatus ready ready; "
            "declined tcloaded {}; frame [7,true,12,true]");
}

}  // namespace
}  // namespace quillon::test
