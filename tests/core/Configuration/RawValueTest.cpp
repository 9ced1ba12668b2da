#include "quillon/RawValue.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>

#include "quillon/BannerConfig.h"
#include "quillon/ConsentSDKOptions.h"
#include "quillon/ConsentStatus.h"
#include "quillon/Explanations.h"
#include "quillon/Listeners.h"
#include "quillon/LogLevel.h"
#include "quillon/SDKStatus.h"
#include "quillon/VantariKey.h"

namespace quillon {
namespace {

// Texts are in the order of the cases.
template <class E>
void expectTexts(std::initializer_list<const char*> texts) {
  int number = 0;
  for (const char* text : texts) {
    const E value = static_cast<E>(number++);
    EXPECT_EQ(rawValue(value), text);
    EXPECT_EQ(fromRawValue<E>(text), value);
    EXPECT_EQ(fromRawValue<E>(std::string(text) + " "), std::nullopt);
  }
  EXPECT_EQ(rawValue(static_cast<E>(number)), "");
  EXPECT_EQ(fromRawValue<E>(""), std::nullopt);
}

TEST(RawValue, IsTheFixedTextOfEveryCase) {
  expectTexts<ConsentStatus>({"not_determined", "granted", "declined", "withdrawn"});
  expectTexts<LogLevel>({"DEBUG", "INFO", "WARNING", "ERROR", "OFF"});
  expectTexts<Mode>({"draft", "live"});
  expectTexts<ComplianceType>({"notice-only", "opt-in", "opt-out"});
  expectTexts<BannerPosition>({"bottom", "center"});
  expectTexts<ButtonShape>({"rounded", "square", "pill", "outlined", "edgeless"});
  expectTexts<BannerReason>({"never_shown", "unanswered", "reconsent", "interval_over", "on_screen", "answered",
                             "signal", "no_configuration"});
  expectTexts<ScreenKind>({"banner", "preferenceCenter", "settingsPrompt", "webView"});
}

TEST(RawValue, OfAnSdkStatusIsANumberWithAMessage) {
  EXPECT_EQ(sdkStatus(0), SDKStatus::ready);
  EXPECT_EQ(sdkStatus(1), SDKStatus::unavailable);
  EXPECT_EQ(sdkStatus(2), SDKStatus::fetching);
  EXPECT_EQ(sdkStatus(3), std::nullopt);
  EXPECT_EQ(sdkStatus(-1), std::nullopt);
  EXPECT_EQ(status(SDKStatus::ready), "SDK CDN is ready to use!");
  EXPECT_EQ(status(SDKStatus::unavailable), "SDK CDN is not available!");
  EXPECT_EQ(status(SDKStatus::fetching), "fetching SDK CDN...");
}

TEST(RawValue, OfAPermissionIsItsUsageDescriptionKey) {
  for (int number = 0; number < static_cast<int>(VantariKey::custom); ++number) {
    const VantariKey key(static_cast<VantariKey::Case>(number));
    EXPECT_TRUE(key.rawValue().ends_with("UsageDescription")) << number;
    EXPECT_EQ(VantariKey(key.rawValue()).kind(), key.kind());
    EXPECT_EQ(static_cast<int>(key.kind()), number);
  }
  EXPECT_EQ(VantariKey(VantariKey::nfcReaderUsageDescription).rawValue(), "NFCReaderUsageDescription");
  EXPECT_EQ(VantariKey("NSNFCReaderUsageDescription").kind(), VantariKey::custom);
  EXPECT_EQ(VantariKey("NSNFCReaderUsageDescription").rawValue(), "NSNFCReaderUsageDescription");
  EXPECT_EQ(VantariKey("NSCameraUsageDescription"), VantariKey(VantariKey::cameraUsageDescription));
}

TEST(RawValue, OfAColorIsReadFromItsLow24Bits) {
  const auto bytes = [](int red, int green, int blue) { return Color{red / 255.0, green / 255.0, blue / 255.0}; };
  const std::pair<const char*, Color> cases[] = {{"#1A2B3C", bytes(0x1A, 0x2B, 0x3C)},
                                                 {"1a2b3c", bytes(0x1A, 0x2B, 0x3C)},
                                                 {"#11223344", bytes(0x22, 0x33, 0x44)},
                                                 {"#FFF", bytes(0, 0x0F, 0xFF)},
                                                 {"1#2#3#", bytes(0, 0x01, 0x23)},
                                                 {"12 34", bytes(0, 0, 0x12)},
                                                 {"123456789abcdef0123456", bytes(0x12, 0x34, 0x56)},
                                                 {"zz", {}},
                                                 {"", {}},
                                                 {"#", {}}};
  for (const auto& [text, color] : cases) EXPECT_EQ(colorFromText(text), color) << text;
}

}  // namespace
}  // namespace quillon
