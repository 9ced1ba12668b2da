// Receipts that applications ask the SDK for, over a real store.
#include <gtest/gtest.h>

#include "core/Text/Sha256.h"
#include "platform/ScreenServices.h"
#include "proof/Check/Verification.h"
#include "proof/Json/CanonicalJson.h"
#include "quillon/Receipts.h"
#include "tests/proof/Evidence.h"
#include "tests/support/World.h"

namespace quillon::proof::test {
namespace {

struct SdkReceipts : testing::Test {
  void start() {
    world.server.serve(quillon::test::validConfiguration());
    auto options = world.options();
    options.controller = completeController();
    world.start(options);
    const auto screens = world.sdk->screens();
    ASSERT_TRUE(screens->answer(true, screens->keepNotice(noticeText(1))));
    world.settle();
  }
  std::string thumbprint() { return receiptIssuer()->keyThumbprint(*world.platform.keys).value(); }
  Findings checked(const std::string& document, const std::string& key) {
    Findings findings;
    const auto now = std::chrono::floor<std::chrono::seconds>(world.clock->now()).time_since_epoch().count();
    checkReceipt(document, {.now = now, .keyThumbprint = key}, std::nullopt, findings);
    return findings;
  }

  quillon::test::World world;
};

TEST_F(SdkReceipts, HoldAndAreMadeByTheLibraryThatIsLinked) {
  start();
  const auto receipt = world.sdk->receipt({1}).get();
  ASSERT_NE(receipt.value(), nullptr) << receipt.error()->error;
  const auto findings = checked(*receipt.value(), thumbprint());
  EXPECT_EQ(findings.faults(), 0u) << listed(findings);
  const auto document = json::parse(*receipt.value()).at("receipt");
  const auto& process = document.at("dpv:hasRecordOfActivity").at(0).at("dpv:hasProcess");
  EXPECT_EQ(process.at("dpv:hasPurpose").at("dct:identifier"), "1");
  EXPECT_EQ(process.at("dpv:hasPurpose").at("dct:title"), "Statistik") << "as it was shown";
  EXPECT_EQ(canonicalJson(document.at("quillon:notices").at(sha256(noticeText(1)))), noticeText(1));
  EXPECT_EQ(document.at("dct:publisher"), "Reader Ltd");
  EXPECT_EQ(world.sdk->receipt({99}).get().error()->error, "purpose 99 was not decided on");
}

TEST_F(SdkReceipts, ComeByCallbackAndSayWhyThereIsNone) {
  bool isLinked = true;
  world.amend = [&](Platform& platform) {
    if (!isLinked) platform.receipts = nullptr;
  };
  start();
  std::string told;
  const auto tell = [&](ConsentSDKResult<std::string> receipt) {
    told = receipt.value() ? "a receipt" : receipt.error()->error;
  };
  world.sdk->receipt({}, tell);
  world.settle();
  EXPECT_EQ(told, "a receipt");
  isLinked = false;
  world.restart();
  world.start();
  world.sdk->receipt({}, tell);
  world.settle();
  EXPECT_EQ(told, "the library quillon::proof is not linked");
  world.sdk->close();
  EXPECT_EQ(world.sdk->receipt().get().error()->error, "the SDK was closed");
}

TEST_F(SdkReceipts, OfTheNextUserAreByAnotherKey) {
  start();
  const auto before = *world.sdk->receipt().get().value();
  const auto key = thumbprint();
  world.sdk->removeConsents();
  world.settle();
  EXPECT_NE(thumbprint(), key);
  EXPECT_EQ(checked(before, key).faults(), 0u) << "an old receipt holds still";
}

}  // namespace
}  // namespace quillon::proof::test
