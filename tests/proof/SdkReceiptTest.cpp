// Receipts that applications ask the SDK for, over a real store.
#include <gtest/gtest.h>

#include "core/Text/Sha256.h"
#include "platform/ScreenServices.h"
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
  std::size_t faults(const std::string& document, const std::string& key) {
    const auto now = std::chrono::floor<std::chrono::seconds>(world.clock->now()).time_since_epoch().count();
    return checkedReceipt(document, {.now = now, .keyThumbprint = key}).faults();
  }

  quillon::test::World world;
};

TEST_F(SdkReceipts, HoldAndAreMadeByTheLibraryThatIsLinked) {
  start();
  const auto receipt = world.sdk->receipt({1}).get();
  ASSERT_NE(receipt.value(), nullptr) << receipt.error()->error;
  EXPECT_EQ(faults(*receipt.value(), thumbprint()), 0u);
  const auto document = json::parse(*receipt.value()).at("receipt");
  const auto& process = document.at("dpv:hasRecordOfActivity").at(0).at("dpv:hasProcess");
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
  EXPECT_EQ(faults(before, key), 0u) << "an old receipt holds still";
  EXPECT_EQ(faults(before, thumbprint()), 1u);
}

// A key that hands out no secret.
class SecureElement : public KeyStore, private Signer {
 public:
  enum class Fault { none, refusal, wrongSignature };

  Signer* signer() override { return this; }
  std::expected<Secret, std::string> secret() override { return std::unexpected("nobody gets the secret"); }
  std::expected<void, std::string> forget() override { return {}; }

  std::atomic<Fault> fault = Fault::none;

 private:
  std::expected<Signer::PublicKey, std::string> publicKey() override { return deviceKey().publicKey().bytes; }
  std::expected<Signature, std::string> sign(std::string_view message) override {
    if (fault == Fault::refusal) return std::unexpected("the element is locked");
    return (fault == Fault::none ? deviceKey() : otherKey()).sign(message);
  }
};

TEST_F(SdkReceipts, AreByAKeyOfTheApplicationsOrNotAtAll) {
  const auto element = std::make_shared<SecureElement>();
  world.amend = [&](Platform& platform) { platform.keys = element; };
  start();
  const auto thumbprint = deviceKey().publicKey().thumbprint();
  EXPECT_EQ(faults(*world.sdk->receipt().get().value(), thumbprint), 0u);
  const auto uploads = world.server.seen(quillon::test::uploadPath);
  ASSERT_FALSE(uploads.empty());
  EXPECT_EQ(uploads.back().headers.find("X-Quillon-Receipt-Key")->second, thumbprint);
  element->fault = SecureElement::Fault::refusal;
  EXPECT_EQ(world.sdk->receipt().get().error()->error, "the element is locked");
  element->fault = SecureElement::Fault::wrongSignature;
  EXPECT_EQ(world.sdk->receipt().get().error()->error, "the key made a signature that does not hold");
}

}  // namespace
}  // namespace quillon::proof::test
