// The commands that read one text, or two, and print what is in it.
#include <algorithm>
#include <functional>

#include "tests/support/Contains.h"
#include "tests/tools/ToolTest.h"

namespace quillon::test {
namespace {

namespace json = boost::json;

// Runs `diff` over the valid configuration and the one that the edit makes of it.
struct Diff : ToolTest {
  std::string diff(const std::function<void(json::object&)>& edit) const {
    auto after = validConfiguration();
    edit(after);
    write("old.json", json::serialize(validConfiguration()));
    write("new.json", json::serialize(after));
    const auto [status, output, errors] = runTool({"diff", file("old.json"), file("new.json")});
    EXPECT_EQ(status, errors.empty() ? 0 : 1);
    return output + errors;
  }
};

TEST_F(Diff, TellsWhatIsMaterialAndWhoIsAskedAgain) {
  EXPECT_EQ(diff([](json::object&) {}),
            "asked again: nobody before the answer expires, since version 5 is not newer than 5\n");
  const auto output = diff([](json::object& document) {
    document["version"] = 6;
    auto& purposes = document["purposes"].as_array();
    purposes[0].as_object()["purpose_name"] = {{"en", "Counting\nmaterial: a lie"}};
    purposes[0].as_object()["sdks"] = {{{"sdk_id", 7}, {"sdk_name", {{"en", "Counter"}}}}};
    purposes[1].as_object().erase("disable_opt_out");
    purposes[2].as_object()["opt_out_text"] = {{"en", "No"}};
    purposes.emplace_back(json::object{{"purpose_id", 4}});
    document["att_or_gad_config"].as_object()["purpose_ids"] = json::array{4};
    document["permissions"].as_array().pop_back();
    bannerOf(document)["compliance_type"] = "opt-out";
    bannerOf(document)["banner_reappearance_time"] = "6 month";
    bannerOf(document)["accept"] = {{"en", "Yes"}};
    document["is_gcm_enabled"] = true;
    document["gcm_config"] = {{"default_mapping", {{"ad_storage", {1}}}}};
    document["i18n"] = {{"en", {{"accept", "Yes"}}}};
  });
  EXPECT_EQ(output, R"(material: purpose 1 "Counting\nmaterial: a lie" has another name
material: purpose 1 "Counting\nmaterial: a lie" covers "Counter" too
material: purpose 2 "Security" is no longer essential
cosmetic: purpose 3 "Advertising" is presented otherwise
material: purpose 4 "" is new: its default holds until the user decides
material: purpose 4 follows the tracking status of the device
material: purpose 3 no longer follows the tracking status
material: permission "NSContactsUsageDescription" goes
material: users elsewhere: opt-out in place of opt-in, also for what was not decided yet
material: users elsewhere: an answer lasts "6 month" in place of "12 month", also one that was given before
cosmetic: users elsewhere: the banner has other texts or another look
material: consent mode is new
cosmetic: labels of the screens change
asked again: everyone who has answered, since version 6 is newer than 5 and re_consent_enabled is true
)");
  EXPECT_EQ(diff([](json::object& document) {
              document["version"] = 6;
              document["re_consent_enabled"] = false;
              document["banner_config"].as_object()["categories"].as_object()["us"] = {{"compliance_type", "opt-out"}};
              document["banner_config"].as_object()["locations"].as_object()["US"] = "us";
            }),
            R"(material: users in "US": opt-out in place of opt-in, also for what was not decided yet
asked again: nobody before the answer expires, since re_consent_enabled is not true; material changes would ask for it
)");
  EXPECT_TRUE(contains(diff([](json::object& document) { document["version"] = "six"; }),
                       "new.json: version: expected an integer"));
}

TEST(Link, TellsAllowedFromRefusedAddressesInBothForms) {
  const struct {
    std::vector<std::string> arguments;
    std::string output;
    int status = 1;
  } cases[] = {
      {{"link", "--allowed", "a.example", "--allowed", "b.example", "HTTPS://A.example", "http://x.b.example/ä"},
       "allowed\thttps://a.example/\nallowed\thttp://x.b.example/%C3%A4\n",
       0},
      {{"link", "--allowed", "a.example", "b.example", "--", "https://b.example/", "https://user@a.example/"},
       "allowed\thttps://b.example/\nrefused\tit carries a user name\thttps://user@a.example/\n"},
      {{"link", "https://a.example/\x1b[2J"},
       "refused\tit contains a control character or a line break\thttps://a.example/\\x1b[2J\n"},
      {{"link", "--allowed=[::1]", "--allowed", "", "--", "http://[::1]/", ""},
       "allowed\thttp://[::1]/\nrefused\tit is empty\t\n"},
      {{"link", "https://a.example/", "--allowed", "b.example"},
       "refused\tits host is not allowed\thttps://a.example/\n"},
  };
  for (const auto& [arguments, output, status] : cases) {
    const auto run = runTool(arguments);
    EXPECT_EQ(run.output, output);
    EXPECT_EQ(run.status, status);
  }
}

struct RichText : ToolTest {};

TEST_F(RichText, IsPrintedAsJsonOrNotAtAll) {
  write("text", "<h3>\"a\"</h3>b\x01<a href='https://x.example/?\"'><s>c</s></a>\n");
  write("large", std::string((256 << 10) + 1, 'x'));
  EXPECT_EQ(json::parse(runTool({"richtext", file("text")}).output), json::parse(R"([
    {"text": "\"a\"\n", "font": "bold", "scale": 1.17, "underline": false, "strikethrough": false, "link": null},
    {"text": "b", "font": "body", "scale": 1, "underline": false, "strikethrough": false, "link": null},
    {"text": "c", "font": "body", "scale": 1, "underline": true, "strikethrough": true,
     "link": "https://x.example/?\""}])"));
  for (const auto* name : {"large", "missing", "."}) {
    const auto [status, output, errors] = runTool({"richtext", file(name)});
    EXPECT_EQ(status, 1) << name;
    EXPECT_EQ(output, "");
    EXPECT_EQ(std::ranges::count(errors, '\n'), 1) << errors;
  }
}

const std::string tcString = "CQSbk4AQSbk4ANwAAAENAwCgAAAAAAAAAAYgACPAAAAA.IDKQA4AAgAKAGQAygAAA";
const std::string tcJson =
    R"({"core":{"Version":2,"Created":1748908800,"LastUpdated":1748908800,"CmpId":880,"CmpVersion":0,)"
    R"("ConsentScreen":0,"ConsentLanguage":"EN","VendorListVersion":48,"TcfPolicyVersion":2,"IsServiceSpecific":true,)"
    R"("UseNonStandardTexts":false,"SpecialFeatureOptIns":[],"PurposesConsent":[],"PurposesLITransparency":[],)"
    R"("PurposeOneTreatment":false,"PublisherCC":"DE","VendorConsent":[1,2,3,4],"VendorLegitimateInterest":[],)"
    R"("PubRestrictions":[]},"disclosedVendors":{"SegmentType":1,"DisclosedVendors":[1,2,3,4,5,100,404]}})";
const std::string usJson =
    R"({"header":{"Type":3,"Version":1,"Sections":[9]},"usva":{"Version":1,"SharingNotice":1,"SaleOptOutNotice":1,)"
    R"("TargetedAdvertisingOptOutNotice":1,"SaleOptOut":2,"TargetedAdvertisingOptOut":1,)"
    R"("SensitiveDataProcessing":[0,0,0,0,0,0,0,2],"KnownChildSensitiveDataConsents":0,"MspaCoveredTransaction":2,)"
    R"("MspaOptOutOptionMode":0,"MspaServiceProviderMode":0}})";

struct SignalStrings : ToolTest {
  ToolRun encode(const std::string& text) const {
    write("signals.json", text);
    auto run = runTool({"signals", "encode", file("signals.json")});
    if (run.output.ends_with('\n')) run.output.pop_back();
    return run;
  }
};

TEST_F(SignalStrings, AndTheirJsonAreMadeOfEachOther) {
  EXPECT_EQ(runTool({"signals", "decode", tcString}).output, tcJson + "\n");
  EXPECT_EQ(encode(tcJson).output, tcString);
  EXPECT_EQ(runTool({"signals", "decode", encode(usJson).output}).output, usJson + "\n");
}

TEST_F(SignalStrings, WhatIsNoStringIsToldWithItsPlace) {
  const auto replaced = [](std::string json, const std::string& what, const std::string& with) {
    return json.replace(json.find(what), what.size(), with);
  };
  const std::pair<std::string, std::string> cases[] = {
      {"{", "document: incomplete JSON"},
      {replaced(tcJson, "\"CmpId\":880", "\"CmpId\":4096"), "core.CmpId: is not from 0 to 4095"},
      {replaced(tcJson, "\"CmpId\"", "\"CmpID\""), "core.CmpId: is missing"},
      {replaced(tcJson, "{\"Version\"", "{\"More\":1,\"Version\""), "core: unknown member \"More\""},
      {replaced(tcJson, "\"Version\":2", "\"Version\":3"), "core.Version: is 3; only 2 is known"},
      {replaced(tcJson, "[1,2,3,4],", "[0],"), "core.VendorConsent: the ID 0 does not exist"},
      {replaced(tcJson, "[1,2,3,4],", "[1.5],"), "core.VendorConsent: expected an integer"},
      {replaced(tcJson, "disclosedVendors\":", "vendors\":"), "vendors: is no segment"},
      {replaced(usJson, "[9]", "[8]"), "header: does not list the sections that follow"},
      {replaced(usJson, "usva", "usxx"), "usxx: is no section"},
  };
  for (const auto& [text, error] : cases) {
    const auto run = encode(text);
    EXPECT_EQ(run.errors, "quillon-consent signals: " + error + "\n");
    EXPECT_EQ(run.status, 1);
  }
  EXPECT_EQ(runTool({"signals", "decode", "hello"}).errors,
            "quillon-consent signals: core.Version: is 33; only 2 is known\n");
}

TEST_F(SignalStrings, ExplainsInWordsWithNamesFromTheVendorList) {
  write("list.json", R"({"gvlSpecificationVersion":3,"vendorListVersion":48,"tcfPolicyVersion":5,"purposes":{},)"
                     R"("specialPurposes":{},"features":{},"specialFeatures":{},"vendors":{)"
                     R"("2":{"id":2,"name":"Ads\u001b[2J"}}})");
  const auto run = runTool({"signals", "explain", tcString, "--vendor-list", file("list.json")});
  EXPECT_TRUE(contains(run.output, "Last updated: 2025-06-03\n"));
  EXPECT_TRUE(contains(run.output, "Consent to vendors: 1 (not in the vendor list), 2 (Ads\\x1b[2J), 3 ("));
  EXPECT_TRUE(contains(runTool({"signals", "explain", tcString.substr(0, 44)}).output, "Void since 28 February 2026"));
  const auto words = runTool({"signals", "explain", encode(usJson).output}).output;
  EXPECT_TRUE(contains(words, "TargetedAdvertisingOptOut: opted out\n"));
  EXPECT_TRUE(contains(words, "SensitiveDataProcessing: 8 consent\n"));
}

}  // namespace
}  // namespace quillon::test
