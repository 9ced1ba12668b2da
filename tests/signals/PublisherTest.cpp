// The keys of the trade's libraries as the decisions of a user go on, in the store of an application and in its pages.
#include <gtest/gtest.h>

#include <atomic>
#include <boost/json/serialize.hpp>
#include <thread>

#include "platform/ScreenServices.h"
#include "platform/linux/LinuxPlatform.h"
#include "quillon/SignalPublisher.h"
#include "quillon/Signals.h"
#include "quillon/Testing.h"
#include "signals/Tcf/TcString.h"
#include "tests/signals/VendorListOf.h"
#include "tests/support/World.h"

namespace quillon::signals::test {
namespace {

using quillon::test::TemporaryFolder;

// Purpose 1 stores (1) and measures (8) with vendor 10; opt-in everywhere but in California, which is opt-out.
std::string documentOf(int version = 5) {
  auto document = quillon::test::configurationOfTwoLaws("US#CA");
  document["version"] = version;
  document["purposes"].as_array()[0].as_object()["sdks"].emplace_array().push_back(
      boost::json::object{{"sdk_id", 100}});
  return boost::json::serialize(document);
}

SignalOptions options() {
  return {.cmpId = 12,
          .tcf = TcfOptions{.purposes = {{1, {.consent = {1, 8}}}},
                            .vendors = {{100, 10}},
                            .vendorList = vendorListOf(R"("10":{"id":10,"name":"Ads","purposes":[1,8]})")},
          .us = UsPrivacyOptions{.sale = {1}}};
}

class PublisherTest : public ::testing::Test {
 protected:
  void launch(const std::optional<std::string>& place) {
    publisher.reset();
    sdk = device.launch();
    setup(place);
    publisher.emplace(*sdk, options(), signalDefaultsIn(suite));
    device.settle();
  }
  void setup(const std::optional<std::string>& place) {
    ConsentSDKOptions chosen = device.options();
    chosen.locationCode = place;
    chosen.privacySignal = PrivacySignal{.purposes = {{1}}};
    sdk->setup(chosen);
  }
  void launchAndAccept() {
    device.publish(documentOf());
    launch("DE");
    accept();
  }
  void accept() {
    sdk->acceptOrReject(true).wait();
    device.settle();
  }
  void check() {
    device.advance(std::chrono::hours(3));
    sdk->checkConsents().wait();
    device.settle();
  }
  std::string text(std::string_view key) const {
    const auto entries = suite->snapshot();
    const auto found = entries->find(key);
    if (found == entries->end()) return "none";
    const auto* number = std::get_if<std::int64_t>(&found->second);
    return number ? std::to_string(*number) : std::get<std::string>(found->second);
  }
  // Of purposes 1 and 8; whether there is a string; the sections in force.
  std::string told() const {
    const std::string consents = text("IABTCF_PurposeConsents");
    return (consents == "none" ? consents : std::string{consents[0], consents[7]}) +
           (text("IABTCF_TCString") == "none" ? " - " : " TC ") + text("IABGPP_GppSID") + " " +
           text("IABGPP_USCA_SaleOptOut");
  }
  template <class Act>
  std::string toldAfter(const Act& act) {
    act();
    device.settle();
    return told();
  }

  const TemporaryFolder folder{TemporaryFolder::fastParent()};
  const Platform platform = linuxPlatform({.dataDirectory = folder.path()});
  const std::shared_ptr<KeyValueSuite> suite = platform.store->open("defaults", {}).value();
  quillon::testing::Device device;
  std::unique_ptr<ConsentSDK> sdk;
  std::optional<SignalPublisher> publisher;
};

TEST_F(PublisherTest, TheKeysFollowEveryDecisionAndThePlace) {
  ASSERT_TRUE(suite->update([](const SuiteEntries&) {
    return SuiteChanges{{"IABTCF_TCString", "of an earlier platform"}, {"theirs", std::int64_t{1}}};
  }));
  device.publish(documentOf());
  launch("DE");
  EXPECT_EQ(told(), "none - -1 none") << "nobody was asked";
  EXPECT_EQ(text("IABTCF_gdprApplies"), "1");
  const auto accepts = [&] { accept(); };
  EXPECT_EQ(toldAfter(accepts), "11 TC 2 none");
  EXPECT_EQ(text("IABTCF_VendorConsents"), "0000000001");
  EXPECT_EQ(toldAfter([&] { sdk->set({.purposeId = 1}, ConsentStatus::declined); }), "00 TC 2 none");
  sdk->set({.purposeId = 1}, ConsentStatus::granted);
  EXPECT_EQ(toldAfter([&] { setup("US#CA"); }), "none - 8 2") << "the keys of Europe are gone";
  EXPECT_EQ(text("IABTCF_gdprApplies"), "0");
  EXPECT_EQ(toldAfter([&] { setup(std::nullopt); }), "none - none none") << "asked for, and not known";
  device.setLocation("DE", "");
  EXPECT_EQ(toldAfter([&] { check(); }), "11 TC 2 none");
  device.publish(documentOf(6));
  EXPECT_EQ(toldAfter([&] { check(); }), "none - -1 none") << "consents are asked for again";
  EXPECT_EQ(toldAfter(accepts), "11 TC 2 none");
  EXPECT_EQ(toldAfter([&] { sdk->removeConsents(); }), "none - none none") << "the place was forgotten, too";
  EXPECT_EQ(text("theirs"), "1");
}

TEST_F(PublisherTest, APrivacySignalIsAnOptOutWhereNobodyHasAnswered) {
  device.publish(documentOf());
  device.setPrivacySignal(true);
  launch("US#CA");
  EXPECT_EQ(text("IABGPP_USCA_SaleOptOut"), "1");
  EXPECT_EQ(text("IABGPP_USCA_Gpc"), "1");
  device.setPrivacySignal(false);
  device.settle();
  EXPECT_NE(text("IABGPP_USCA_SaleOptOut"), "1");
  EXPECT_EQ(text("IABGPP_USCA_Gpc"), "0");
}

TEST_F(PublisherTest, NobodySeesHalfOfADecision) {
  launchAndAccept();
  std::atomic<bool> isOver = false;
  std::atomic<int> halves = 0;
  std::atomic<int> looks = 0;
  std::jthread reader([&] {
    while (!isOver) {
      const auto entries = suite->snapshot();
      const auto of = [&](const char* key) { return std::get<std::string>(entries->at(key)); };
      const auto tc = decodeTcString(of("IABTCF_TCString"));
      const bool isGranted = tc && !tc->core.get<Ids>("PurposesConsent").empty();
      if (isGranted != (of("IABTCF_PurposeConsents")[0] == '1') || isGranted == of("IABTCF_VendorConsents").empty() ||
          of("IABGPP_2_TCString") != of("IABTCF_TCString")) {
        ++halves;
      }
      ++looks;
    }
  });
  constexpr int decisions = 60;
  for (int i = 0; i < decisions; ++i) {
    const auto decide = [&] { sdk->set({.purposeId = 1}, i % 2 ? ConsentStatus::granted : ConsentStatus::declined); };
    EXPECT_EQ(toldAfter(decide), i % 2 ? "11 TC 2 none" : "00 TC 2 none");
  }
  isOver = true;
  reader.join();
  EXPECT_EQ(halves, 0) << "of " << looks;
  EXPECT_GT(looks, 0);
}

TEST_F(PublisherTest, AnEarlierRunsKeysAreGoneBeforeAnythingIsKnown) {
  launchAndAccept();
  publisher.reset();
  sdk = device.launch();
  publisher.emplace(*sdk, options(), signalDefaultsIn(suite));
  EXPECT_EQ(told(), "none - none none") << "before the set-up";
  setup("DE");
  publisher.reset();  // two would write at once
  publisher.emplace(*sdk, options(), signalDefaultsIn(suite));
  EXPECT_EQ(told(), "11 TC 2 none") << "the user's answer and the cached configuration are enough";

  auto nobody = options();
  nobody.cmpId = 0;
  publisher.reset();
  publisher.emplace(*sdk, nobody, signalDefaultsIn(suite));
  EXPECT_EQ(told(), "none - none none");
  EXPECT_NE(device.log().find("without the number of a registered consent platform nothing is written"),
            std::string::npos);
}

// Fails until it is told not to.
class FailingDefaults : public SignalDefaults {
 public:
  bool replace(const SignalKeys& keys) override {
    ++calls;
    if (fails == 1) return false;
    if (fails == 2) throw std::runtime_error("no");
    written = keys;
    return true;
  }
  int fails = 1;
  int calls = 0;
  SignalKeys written;
};

TEST_F(PublisherTest, WhatCouldNotBeWrittenIsWrittenWithTheNextChange) {
  device.publish(documentOf());
  launch("DE");
  publisher.reset();
  const auto defaults = std::make_shared<FailingDefaults>();
  const SignalPublisher failing(*sdk, options(), defaults);
  EXPECT_EQ(defaults->calls, 1);
  EXPECT_NE(device.log().find("could not be written"), std::string::npos);
  defaults->fails = 2;
  accept();
  EXPECT_TRUE(defaults->written.empty());
  defaults->fails = 0;
  check();
  EXPECT_TRUE(defaults->written.contains("IABTCF_TCString"));
  const int calls = defaults->calls;
  check();
  EXPECT_EQ(defaults->calls, calls) << "what has not changed is not written again";
}

TEST_F(PublisherTest, PagesAreToldWithTheConsents) {
  launchAndAccept();
  const std::string script = sdk->consentScript().get();
  EXPECT_TRUE(script.starts_with("window.quillonConsents="));
  EXPECT_NE(script.find(text("IABTCF_TCString")), std::string::npos);
  EXPECT_EQ(script.find("</"), std::string::npos) << "it stands in a script element";
  publisher.reset();
  EXPECT_EQ(sdk->consentScript().get().find("__tcfapi"), std::string::npos);
}

}  // namespace
}  // namespace quillon::signals::test
