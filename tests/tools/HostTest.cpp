#include "tests/support/Contains.h"
#include "tests/tools/ToolTest.h"

namespace quillon::test {
namespace {

namespace json = boost::json;

struct Host : HostedTest {};

TEST_F(Host, TakesOneRunFromSetUpToUpload) {
  using Object = json::object;
  start({"--clock", "1700000000", "--languages", "de-DE,en", "--tracking", "authorized", "--permission",
         "NSCameraUsageDescription=3", "--network", "satisfied"});
  EXPECT_EQ(host->setUp().at("status"), "ready");
  EXPECT_EQ(server.seen().front().path, "/consent/mobile_banner/t1/a1/live/config_de.json");
  EXPECT_EQ(ask(R"({"op":"status"})"),
            Object({{"ok", true}, {"status", "ready"}, {"rawValue", 0}, {"message", "SDK CDN is ready to use!"}}));
  ask(R"({"op":"listen"})");
  EXPECT_EQ(ask(R"({"op":"bannerDue"})"), Object({{"ok", true}, {"due", true}}));
  EXPECT_EQ(ask(R"({"op":"explain"})"), Object({{"ok", true},
                                                {"due", false},
                                                {"reason", "on_screen"},
                                                {"expires", nullptr},
                                                {"version", nullptr},
                                                {"text", "The banner is not due: it is on screen."}}));
  EXPECT_EQ(ask(R"({"op":"accept"})"), Object({{"ok", true}, {"stored", true}}));
  EXPECT_EQ(ask(R"({"op":"get","purposeId":1})").at("consent"), "granted");
  EXPECT_EQ(ask(R"({"op":"get","permission":"NSCameraUsageDescription"})").at("consent"), "granted");
  EXPECT_EQ(ask(R"({"op":"set","purposeId":1,"consent":"withdrawn"})"), Object({{"ok", true}, {"stored", true}}));
  EXPECT_EQ(ask(R"({"op":"advance","seconds":1})").at("now"), 1700000001);
  EXPECT_EQ(server.seen(uploadPath).size(), 2u);
  EXPECT_EQ(ask(R"({"op":"purposes"})").at("purposes").at(0).at("consent_status"), "withdrawn");
  EXPECT_EQ(ask(R"({"op":"bannerConfig"})").at("bannerConfig").at("compliance_type"), "opt-in");
  EXPECT_EQ(ask(R"({"op":"explain","purposeId":1})").at("text"), "The user decided it: withdrawn on 2023-11-14.");
  const auto history = ask(R"({"op":"history","count":1})");
  EXPECT_EQ(history.at("before"), 7);
  EXPECT_EQ(history.at("history").at(0).at("number"), 7);
  const auto events = ask(R"({"op":"listen"})").at("events").as_array();
  EXPECT_EQ(events.size(), 5u) << json::serialize(events);
  EXPECT_EQ(json::serialize(events.back()),
            R"({"event":"upload","accepted":true,"status":0,"message":"saved","time":1700000001})");
  EXPECT_EQ(ask(R"({"op":"consentScript"})").at("script").as_string().find("window.quillonConsents="), 0u);
  EXPECT_EQ(ask(R"({"op":"check"})"), Object({{"ok", true}}));
  EXPECT_EQ(ask(R"({"op":"upload"})").at("uploaded"), true);
  EXPECT_EQ(ask(R"({"op":"network","status":"unsatisfied"})").at("ok"), true);
  EXPECT_EQ(ask(R"({"op":"removeConsents"})").at("ok"), true);
  EXPECT_FALSE(ask(R"({"op":"store"})").at("store").as_object().contains("1"));
  EXPECT_EQ(ask(R"({"op":"isAllowed","purposeId":1})"), Object({{"ok", true}, {"allowed", false}}));
  host->writeLine(R"({"op":"quit"})");
  EXPECT_EQ(host->wait(), 0);
  EXPECT_TRUE(contains(read("log"), "[INFO]Successfully removed all consents"));
}

TEST_F(Host, ShowsItsScreensInWords) {
  auto document = validConfiguration();
  document["is_sp_enabled"] = true;
  document["settings_prompt"] = {{"prompt_heading", {{"en", "Camera"}}},
                                 {"permissions", {{"NSCameraUsageDescription", true}}}};
  bannerOf(document)["should_show_settings_prompt"] = true;
  bannerOf(document)["banner_text"] = {{"en", R"(See <a href="https://help.example/">help</a>)"}};
  server.serve(document);
  start({"--languages", "en", "--network", "satisfied"});
  host->setUp();
  ask(R"({"op":"listen"})");
  const auto shown = ask(R"({"op":"banner","ifDue":true})").at("banner");
  EXPECT_EQ(shown.at("buttons").at(0).at("text"), "Reject");
  EXPECT_EQ(shown.at("labels").at("save_changes"), "Save Changes");
  ask(R"({"op":"recordDefaults"})");
  EXPECT_EQ(ask(R"({"op":"get","purposeId":1})").at("consent"), "declined");

  const auto saved = ask(R"({"op":"preferences","toggle":1,"save":true})");
  EXPECT_EQ(saved.at("preferences").at("purposes").at(0).at("label"), "Accepted");
  EXPECT_EQ(saved.at("isShown"), false);
  EXPECT_EQ(ask(R"({"op":"get","purposeId":1})").at("consent"), "granted");

  const std::string prompt = R"({"op":"prompt","permission":"NSCameraUsageDescription")";
  EXPECT_EQ(ask(prompt + "}").at("prompt").at("heading"), "Camera");
  EXPECT_EQ(ask(prompt + R"(,"choose":"close"})").at("isShown"), false);
  EXPECT_EQ(ask(prompt + "}").at("prompt"), nullptr);

  EXPECT_EQ(ask(R"({"op":"openLink","link":"https://help.example/a"})").at("loaded"), "https://help.example/a");
  EXPECT_EQ(ask(R"({"op":"openLink","link":"https://other.example/"})").at("isBlockedPageShowing"), true);

  std::string screens;
  const auto heard = ask(R"({"op":"listen"})");
  for (const auto& event : heard.at("events").as_array()) {
    const auto* screen = event.as_object().if_contains("screen");
    if (screen) screens.append(event.at("event").as_string()).append(" ").append(screen->as_string()).append("; ");
  }
  EXPECT_EQ(screens,
            "shown banner; shown preferenceCenter; dismissed preferenceCenter; dismissed banner; shown settingsPrompt; "
            "dismissed settingsPrompt; shown webView; dismissed webView; shown webView; dismissed webView; ");
}

TEST_F(Host, ExplainsWhatItDoesNotUnderstandAndGoesOn) {
  start({});
  for (const auto& [line, error] : std::vector<std::pair<const char*, const char*>>{
           {"nonsense", "not JSON: syntax error"},
           {R"({"op":"fly"})", "unknown op: fly"},
           {R"({"op":"get","purposeId":"one"})", "\"purposeId\" is of the wrong type"},
           {R"({"op":"set","purposeId":1,"consent":"maybe"})", "\"consent\" is not one of the known values: maybe"},
           {R"({"op":"advance","seconds":1})", "the clock is the real one; start the host with --clock"},
           {R"({"op":"setup","appUrl":"x"})", "\"cdnUrl\" is missing"}}) {
    EXPECT_EQ(ask(line), (json::object{{"ok", false}, {"error", error}}));
  }
  EXPECT_EQ(ask(R"({"op":"status"})").at("status"), "unavailable");
}

}  // namespace
}  // namespace quillon::test
