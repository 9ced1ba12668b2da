// What decisions mean, and the keys that follow.
#include <gtest/gtest.h>

#include <algorithm>

#include "quillon/Signals.h"
#include "signals/Keys/Keys.h"
#include "signals/Records/RecordBits.h"
#include "tests/signals/VendorListOf.h"

namespace quillon::signals::test {
namespace {

// Purpose 1 of the configuration stores and shows advertisements (1, 2, 7), purpose 2 measures (7, 8 and a special
// feature), purpose 3 is the publisher's own. Vendors: 10 and 20 under purpose 1, 20 and 30 under purpose 2.
SignalOptions rulesOptions() {
  const std::string vendors = R"(
      "10":{"id":10,"name":"Ads","purposes":[1,2],"legIntPurposes":[7]},
      "20":{"id":20,"name":"Both","purposes":[1,8]},
      "30":{"id":30,"name":"Safe","specialPurposes":[1]})";
  return {
      .cmpId = 12,
      .cmpVersion = 3,
      .tcf = TcfOptions{.purposes = {{1, {.consent = {1, 2}, .legitimateInterest = {7}}},
                                     {2, {.consent = {8}, .legitimateInterest = {7}, .specialFeatures = {1}}}},
                        .vendors = {{100, 10}, {200, 20}, {300, 30}},
                        .vendorList = vendorListOf(vendors),
                        .publisherCountry = "DE"},
      .us = UsPrivacyOptions{.sale = {1}, .targetedAdvertising = {1, 2}, .sensitiveData = {{"usca", {{3, {2}}}}}},
  };
}

SignalState state(std::string place = "DE") {
  return {.purposes = {{1, true, true, {100, 200}}, {2, true, true, {200, 300}}, {3, true, true}},
          .isDisclosed = true,
          .decidedAt = std::chrono::sys_days(std::chrono::year(2026) / 3 / 1) + std::chrono::hours(13),
          .language = "de",
          .place = std::move(place)};
}

const SignalRules& rules() {
  static const SignalRules all = rulesOf(rulesOptions()).value();
  return all;
}

Ids ids(const std::optional<TcString>& tc, std::string_view field) {
  return tc->core.get<Ids>(field);
}

TEST(RulesTest, EveryMistakeInOptionsIsTold) {
  EXPECT_EQ(Signals(rulesOptions()).keys(state()), keysOf(rules(), state()));
  auto wrong = rulesOptions();
  wrong.cmpId = 1;
  wrong.consentScreen = 64;
  wrong.tcf->publisherCountry = "de";
  wrong.tcf->purposes[1].legitimateInterest = {3};
  wrong.tcf->purposes[2].consent = {12};
  wrong.tcf->vendors[1] = 11;
  wrong.us->sensitiveData = {{"usca", {{10, {1}}}}, {"usmd", {{1, {1}}}}, {"uszz", {}}};
  wrong.us->nationalApproach = true;
  EXPECT_EQ(rulesOf(wrong).error(), (std::vector<std::string>{
                                        "cmpId: 1 is not from 2 to 4095",
                                        "consentScreen: 64 is not from 0 to 63",
                                        "tcf.publisherCountry: is no code of two capitals",
                                        "tcf.purposes.1: purpose 3 needs consent",
                                        "tcf.purposes.2: the vendor list has no purpose 12",
                                        "tcf.vendors.1: the vendor list has no vendor 11",
                                        "us.sensitiveData.usca: 10 is not from 1 to 9",
                                        "us.sensitiveData.usmd: 1 is not from 1 to 0",
                                        "us.sensitiveData.uszz: is no section",
                                        "us.nationalApproach: has no meaning without mspaCovered",
                                    }));
}

TEST(RulesTest, ConsentIsWhatEveryPurposeBehindItGrantsExplicitly) {
  const struct {
    bool granted1, explicit1, granted2, explicit2;
    Ids purposes, interests, features, vendors, vendorInterests;
  } cases[] = {
      {true, true, true, true, {1, 2, 8}, {7}, {1}, {10, 20}, {10, 30}},
      {true, true, false, true, {1, 2}, {}, {}, {10}, {10, 30}},
      {false, true, true, true, {8}, {}, {1}, {}, {30}},
      {true, false, true, false, {}, {7}, {}, {}, {10, 30}},  // granted by default only
      {true, true, true, false, {1, 2}, {7}, {}, {10}, {10, 30}},
  };
  for (const auto& row : cases) {
    auto decided = state();
    decided.purposes[0].isGranted = row.granted1;
    decided.purposes[0].isExplicit = row.explicit1;
    decided.purposes[1].isGranted = row.granted2;
    decided.purposes[1].isExplicit = row.explicit2;
    const auto tc = tcStringOf(rules(), decided);
    ASSERT_TRUE(tc);
    const auto name = encode(*tc).value();
    EXPECT_EQ(ids(tc, "PurposesConsent"), row.purposes) << name;
    EXPECT_EQ(ids(tc, "PurposesLITransparency"), row.interests) << name;
    EXPECT_EQ(ids(tc, "SpecialFeatureOptIns"), row.features) << name;
    EXPECT_EQ(ids(tc, "VendorConsent"), row.vendors) << name;
    EXPECT_EQ(ids(tc, "VendorLegitimateInterest"), row.vendorInterests) << name;
    EXPECT_EQ(tc->disclosedVendors->get<Ids>("DisclosedVendors"), (Ids{10, 20, 30})) << name;
  }
  auto lost = state();
  lost.purposes.erase(lost.purposes.begin() + 1);
  const auto tc = tcStringOf(rules(), lost);
  EXPECT_EQ(ids(tc, "PurposesConsent"), (Ids{1, 2})) << "a purpose that the configuration lost grants nothing";
  EXPECT_EQ(ids(tc, "PurposesLITransparency"), Ids());
  lost.place = "US#CA";
  EXPECT_EQ(usStringOf(rules(), lost)->core.get<Numbers>("SensitiveDataProcessing")[2], 1);
}

TEST(RulesTest, AVendorMayNotDoWhatItWasNotListedFor) {
  auto decided = state();
  decided.purposes[1].sdkIds = {300};  // vendor 20 declares purpose 8, but stands under advertisements only
  const auto tc = tcStringOf(rules(), decided);
  EXPECT_EQ(tc->core.get<std::vector<Restriction>>("PubRestrictions"), (std::vector<Restriction>{{8, 0, {20}}}));
  EXPECT_TRUE(tcStringOf(rules(), state())->core.get<std::vector<Restriction>>("PubRestrictions").empty());
}

TEST(RulesTest, ThereIsAStringOnlyWhereTheLawAppliesAndAfterDisclosure) {
  for (const char* place : {"GB", "NO", "DE#BE"}) EXPECT_TRUE(tcStringOf(rules(), state(place))) << place;
  for (const char* place : {"US#CA", "CH", "", "DEU"}) EXPECT_FALSE(tcStringOf(rules(), state(place))) << place;
  auto unseen = state();
  unseen.isDisclosed = false;
  EXPECT_FALSE(tcStringOf(rules(), unseen));
  auto nowhere = state();
  nowhere.place.reset();
  EXPECT_FALSE(tcStringOf(rules(), nowhere));
}

TEST(RulesTest, CustomPurposesFollowInThePublishersSegment) {
  auto withCustom = rulesOptions();
  withCustom.tcf->customPurposes = {3, 9};
  const auto tc = tcStringOf(rulesOf(withCustom).value(), state());
  EXPECT_EQ(tc->publisherTC->get<Ids>("PubPurposesConsent"), (Ids{1, 2, 8}));
  EXPECT_EQ(tc->publisherTC->get("NumCustomPurposes"), 2);
  EXPECT_EQ(tc->publisherTC->get<Ids>("CustomPurposesConsent"), Ids{1});
}

TEST(RulesTest, OptOutsFollowTheChoicesOfTheState) {
  const struct {
    bool granted1, granted2, isDisclosed;
    std::int64_t saleNotice, saleOptOut;
    Numbers sensitive;
  } cases[] = {
      {true, true, true, 1, 2, {0, 0, 2, 0, 0, 0, 0, 0, 0}},
      {false, true, true, 1, 1, {0, 0, 2, 0, 0, 0, 0, 0, 0}},
      {true, false, true, 1, 2, {0, 0, 1, 0, 0, 0, 0, 0, 0}},
      {true, true, false, 2, 0, {0, 0, 0, 0, 0, 0, 0, 0, 0}},  // never shown: nobody declined to opt out
      {false, false, false, 2, 1, {0, 0, 1, 0, 0, 0, 0, 0, 0}},
  };
  for (const auto& row : cases) {
    auto decided = state("US#CA");
    decided.purposes[0].isGranted = row.granted1;
    decided.purposes[1].isGranted = row.granted2;
    decided.isDisclosed = row.isDisclosed;
    const auto us = usStringOf(rules(), decided);
    ASSERT_TRUE(us);
    EXPECT_EQ(us->core.get("SaleOptOutNotice"), row.saleNotice);
    EXPECT_EQ(us->core.get("SaleOptOut"), row.saleOptOut);
    EXPECT_EQ(us->core.get("SharingOptOut"), 0);
    EXPECT_EQ(us->core.get<Numbers>("SensitiveDataProcessing"), row.sensitive);
    EXPECT_EQ(us->core.get("MspaCoveredTransaction"), 2);
    EXPECT_FALSE(us->subsection);
  }
}

TEST(RulesTest, TheSectionIsThatOfThePlace) {
  auto options = rulesOptions();
  options.us->mspaCovered = true;
  options.us->nationalApproach = true;
  const auto prefixOf = [](const SignalRules& of, const char* place) {
    const auto us = usStringOf(of, state(place));
    return us ? std::string(us->core.layout().name) : std::string();
  };
  const auto nationalRules = rulesOf(options).value();
  for (const auto& [place, ofState, national] : {std::tuple("US#CA", "usca", "usnat"),
                                                 {"US#tx", "ustx", "usnat"},
                                                 {"US#NY", "", "usnat"},
                                                 {"US", "", "usnat"},
                                                 {"USA", "", ""},
                                                 {"US#nat", "", "usnat"}}) {
    EXPECT_EQ(prefixOf(rules(), place), ofState) << place;
    EXPECT_EQ(prefixOf(nationalRules, place), national) << place;
  }
}

SignalKeys pick(const SignalKeys& keys, std::string_view prefix) {
  SignalKeys picked;
  for (const auto& [key, value] : keys) {
    if (key.starts_with(prefix)) picked.emplace(key, value);
  }
  return picked;
}

TEST(KeysTest, EuropeanKeysHaveTheSpecifiedTypesAndForms) {
  auto decided = state();
  decided.purposes[1].sdkIds = {300};
  const auto keys = keysOf(rules(), decided);
  const auto text = encode(*tcStringOf(rules(), decided)).value();
  const auto number = [](std::int64_t value) { return SignalValue(value); };
  EXPECT_EQ(pick(keys, "IABTCF_"), (SignalKeys{
                                       {"IABTCF_CmpSdkID", number(12)},
                                       {"IABTCF_CmpSdkVersion", number(3)},
                                       {"IABTCF_DisclosedVendors", "000000000100000000010000000001"},
                                       {"IABTCF_PolicyVersion", number(5)},
                                       {"IABTCF_PublisherCC", "DE"},
                                       {"IABTCF_PublisherRestrictions8", "___________________0"},
                                       {"IABTCF_PurposeConsents", "110000010000000000000000"},
                                       {"IABTCF_PurposeLegitimateInterests", "000000100000000000000000"},
                                       {"IABTCF_PurposeOneTreatment", number(0)},
                                       {"IABTCF_SpecialFeaturesOptIns", "100000000000"},
                                       {"IABTCF_TCString", text},
                                       {"IABTCF_UseNonStandardTexts", number(0)},
                                       {"IABTCF_VendorConsents", "00000000010000000001"},
                                       {"IABTCF_VendorLegitimateInterests", "000000000100000000000000000001"},
                                       {"IABTCF_gdprApplies", number(1)},
                                   }));
  for (const auto& [key, value] : SignalKeys{
           {"IABGPP_HDR_GppString", "DBABM~" + text},
           {"IABGPP_HDR_Version", "1"},
           {"IABGPP_HDR_Sections", "2"},
           {"IABGPP_GppSID", "2"},
           {"IABGPP_2_String", text},
           {"IABGPP_2_TCString", text},
           {"IABGPP_TCFEU2_LastUpdated", number(1'772'323'200'000)},
           {"IABGPP_TCFEU2_PurposesConsent", "1_2_8"},
           {"IABGPP_TCFEU2_PurposeConsents", keys.at("IABTCF_PurposeConsents")},
           {"IABGPP_TCFEU2_PubRestrictions8", "20:0"},
           {"IABGPP_TCFEU2_PublisherRestrictions8", keys.at("IABTCF_PublisherRestrictions8")},
       }) {
    EXPECT_EQ(keys.at(key), value) << key;
  }
  EXPECT_TRUE(std::ranges::all_of(keys, [](const auto& entry) { return isSignalKey(entry.first); }));
}

TEST(KeysTest, KeysOfAPlaceWhereALawDoesNotApplyAreNotThere) {
  auto decided = state("US#CA");
  decided.globalPrivacyControl = true;
  const auto california = keysOf(rules(), decided);
  EXPECT_EQ(pick(california, "IABTCF_"), (SignalKeys{{"IABTCF_CmpSdkID", std::int64_t{12}},
                                                     {"IABTCF_CmpSdkVersion", std::int64_t{3}},
                                                     {"IABTCF_PolicyVersion", std::int64_t{5}},
                                                     {"IABTCF_gdprApplies", std::int64_t{0}}}));
  EXPECT_TRUE(pick(california, "IABGPP_TCFEU2_").empty());
  EXPECT_EQ(california.at("IABGPP_GppSID"), SignalValue("8"));
  EXPECT_EQ(california.at("IABGPP_USCA_SaleOptOut"), SignalValue(std::int64_t{2}));
  EXPECT_EQ(california.at("IABGPP_USCA_SensitiveDataProcessing"), SignalValue("0_0_2_0_0_0_0_0_0"));
  EXPECT_EQ(california.at("IABGPP_USCA_Gpc"), SignalValue(std::int64_t{1}));

  const auto elsewhere = keysOf(rules(), state("JP"));
  EXPECT_EQ(pick(elsewhere, "IABGPP_"), (SignalKeys{{"IABGPP_GppSID", "-1"},
                                                    {"IABGPP_HDR_GppString", "DBAA"},
                                                    {"IABGPP_HDR_Sections", ""},
                                                    {"IABGPP_HDR_Version", "1"}}));
  auto unknown = state();
  unknown.place.reset();
  EXPECT_EQ(keysOf(rules(), unknown).size(), 3U);
}

}  // namespace
}  // namespace quillon::signals::test
