#include <gtest/gtest.h>

#include <fstream>

#include "tests/support/Contains.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/tools/ToolProcess.h"

namespace quillon::test {
namespace {

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

ToolRun encode(const std::string& json) {
  const TemporaryFolder folder;
  const auto path = folder.path() / "signals.json";
  std::ofstream(path) << json;
  return runTool({"signals", "encode", path.string()});
}

TEST(SignalsTest, StringsAndTheirJsonAreMadeOfEachOther) {
  const auto decoded = runTool({"signals", "decode", tcString});
  EXPECT_EQ(decoded.output, tcJson + "\n");
  EXPECT_EQ(encode(decoded.output).output, tcString + "\n");

  const auto us = encode(usJson);
  EXPECT_EQ(us.errors, "");
  EXPECT_EQ(runTool({"signals", "decode", us.output.substr(0, us.output.size() - 1)}).output, usJson + "\n");
}

TEST(SignalsTest, WhatFollowsFromTheRestMayBeLeftOut) {
  auto brief = usJson;
  brief.erase(1, brief.find("\"usva\"") - 1);
  brief.erase(brief.find("\"Version\":1,"), 12);
  EXPECT_EQ(encode(brief).output, encode(usJson).output);
}

TEST(SignalsTest, WhatIsNoStringIsToldWithItsPlace) {
  const auto replaced = [](std::string json, const std::string& what, const std::string& with) {
    return json.replace(json.find(what), what.size(), with);
  };
  const struct {
    std::string json;
    std::string error;
  } cases[] = {
      {"[]", "document: expected an object"},
      {"{", "document: incomplete JSON"},
      {replaced(tcJson, "\"CmpId\":880", "\"CmpId\":4096"), "core.CmpId: is not from 0 to 4095"},
      {replaced(tcJson, "\"CmpId\":880,", ""), "core.CmpId: is missing"},
      {replaced(tcJson, "\"CmpId\"", "\"CmpID\""), "core.CmpId: is missing"},
      {replaced(tcJson, "{\"Version\"", "{\"More\":1,\"Version\""), "core: unknown member \"More\""},
      {replaced(tcJson, "\"Version\":2", "\"Version\":3"), "core.Version: is 3; only 2 is known"},
      {replaced(tcJson, "\"DE\"", "\"D1\""), "core.PublisherCC: expected 2 letters"},
      {replaced(tcJson, "[1,2,3,4],", "[0],"), "core.VendorConsent: the ID 0 does not exist"},
      {replaced(tcJson, "[1,2,3,4],", "[1.5],"), "core.VendorConsent: expected an integer"},
      {replaced(tcJson, "disclosedVendors\":", "vendors\":"), "vendors: is no segment"},
      {replaced(usJson, ",2],", "],"), "usva.SensitiveDataProcessing: expected 8 integers"},
      {replaced(usJson, "[9]", "[8]"), "header: does not list the sections that follow"},
      {replaced(usJson, "usva", "usxx"), "usxx: is no section"},
  };
  for (const auto& [json, error] : cases) {
    const auto run = encode(json);
    EXPECT_EQ(run.errors, "quillon-consent signals: " + error + "\n");
    EXPECT_EQ(run.status, 1);
  }
  EXPECT_EQ(runTool({"signals", "decode", "hello"}).errors,
            "quillon-consent signals: core.Version: is 33; only 2 is known\n");
}

TEST(SignalsTest, ExplainsInWordsWithNamesFromTheVendorList) {
  const TemporaryFolder folder;
  const auto list = folder.path() / "list.json";
  std::ofstream(list) << R"({"gvlSpecificationVersion":3,"vendorListVersion":48,"tcfPolicyVersion":5,"purposes":{},)"
                         R"("specialPurposes":{},"features":{},"specialFeatures":{},"vendors":{)"
                         R"("2":{"id":2,"name":"Ads\u001b[2J"}}})";
  const auto run = runTool({"signals", "explain", tcString, "--vendor-list", list.string()});
  EXPECT_EQ(run.errors, "");
  EXPECT_TRUE(contains(run.output, "Last updated: 2025-06-03\n"));
  EXPECT_TRUE(contains(run.output, "Consent to vendors: 1 (not in the vendor list), 2 (Ads\\x1b[2J), 3 ("));
  EXPECT_TRUE(contains(runTool({"signals", "explain", tcString.substr(0, 44)}).output, "Void since 28 February 2026"));
  const auto us = encode(usJson).output;
  const auto words = runTool({"signals", "explain", us.substr(0, us.size() - 1)}).output;
  EXPECT_TRUE(contains(words, "TargetedAdvertisingOptOut: opted out\n"));
  EXPECT_TRUE(contains(words, "SensitiveDataProcessing: 8 consent\n"));
}

}  // namespace
}  // namespace quillon::test
