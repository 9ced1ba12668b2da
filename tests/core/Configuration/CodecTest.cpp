// Holds for every structure: each key of a complete document is decoded, encoded, compared, hashed and type-checked.
#include "core/Json/Codec.h"

#include <gtest/gtest.h>

#include <boost/json.hpp>
#include <functional>
#include <regex>
#include <string>
#include <vector>

#include "quillon/BannerConfig.h"
#include "quillon/ConsentSDKOptions.h"
#include "quillon/Explanations.h"
#include "quillon/Listeners.h"
#include "quillon/LogLevel.h"
#include "tests/core/Configuration/CompleteDocuments.h"

namespace quillon {
namespace {

// A value of a document: its JSON pointer, and its path in error messages.
struct Place {
  std::string pointer;
  std::string path;
};

void collectPlaces(const boost::json::value& value, const Place& at, std::vector<Place>& places) {
  if (!at.path.empty()) places.push_back(at);
  if (const auto* object = value.if_object()) {
    for (const auto& [key, member] : *object) {
      const std::string name(key);
      collectPlaces(member, {at.pointer + "/" + name, at.path.empty() ? name : at.path + "." + name}, places);
    }
  } else if (const auto* array = value.if_array()) {
    for (std::size_t i = 0; i < array->size(); ++i) {
      const std::string index = std::to_string(i);
      collectPlaces((*array)[i], {at.pointer + "/" + index, at.path + "[" + index + "]"}, places);
    }
  }
}

template <class R>
class Codec : public ::testing::Test {
 protected:
  Codec() { collectPlaces(document_, {}, places_); }

  // Expects the change at @p place to be rejected with its path if @p refused, else to decode to a different structure.
  void expectOutcome(const boost::json::value& changed, const Place& place, bool refused) {
    const auto record = decode<R>(boost::json::serialize(changed));
    if (refused) {
      ASSERT_FALSE(record) << place.path;
      EXPECT_EQ(record.error().substr(0, place.path.size() + 2), place.path + ": ");
    } else {
      ASSERT_TRUE(record) << record.error();
      EXPECT_FALSE(*record == complete_) << place.path << " is not compared";
    }
  }

  const boost::json::value document_ = boost::json::parse(completeDocument<R>.json);
  const R complete_ = decode<R>(completeDocument<R>.json).value();
  std::vector<Place> places_;
  const std::regex required_{completeDocument<R>.required};
  const std::regex entries_{completeDocument<R>.entries};
};

using Records = testing::Types<MainConfiguration, PostConsentsRequest, GenericResponse, CurrentLocationResponse>;
TYPED_TEST_SUITE(Codec, Records);

TYPED_TEST(Codec, WritesWhatItHasRead) {
  const std::string json = encode(this->complete_);
  EXPECT_EQ(boost::json::parse(json), this->document_);
  EXPECT_EQ(decode<TypeParam>(json), this->complete_);
}

TYPED_TEST(Codec, RefusesAWrongTypeInEveryPlaceAndAbsenceWhereAValueIsRequired) {
  for (const Place& place : this->places_) {
    const bool isRequired = std::regex_match(place.path, this->required_);
    const bool isElement = place.path.back() == ']';
    boost::json::value changed = this->document_;
    boost::json::value& value = changed.at_pointer(place.pointer);
    const bool mayBeNull = !isRequired && !isElement && !std::regex_match(place.path, this->entries_);
    const bool wasNull = value.is_null();
    value = value.is_string() ? boost::json::value(7) : boost::json::value("text");
    this->expectOutcome(changed, place, true);
    if (!wasNull) {
      value = nullptr;
      this->expectOutcome(changed, place, !mayBeNull);
    }
    if (isElement) continue;
    const std::size_t slash = place.pointer.rfind('/');
    changed.at_pointer(place.pointer.substr(0, slash)).as_object().erase(place.pointer.substr(slash + 1));
    this->expectOutcome(changed, place, isRequired);
  }
}

// Each of these fields, which no document carries, is in a different place of the structure.
TEST(RecordEquality, CoversTheFieldsThatNoDocumentCarries) {
  const auto complete = decode<MainConfiguration>(completeDocument<MainConfiguration>.json).value();
  std::vector<MainConfiguration> changed(4, complete);
  changed[0].purposes->at(0).isATTMapped = true;
  changed[1].purposes->at(0).attDescription.emplace();
  changed[2].permissions->at(0).isSettingsPromptEnabled = false;
  changed[3].bannerConfig->categories.at("default").translations.emplace();
  for (const auto& record : changed) {
    EXPECT_FALSE(record == complete);
    EXPECT_NE(std::hash<MainConfiguration>{}(record), std::hash<MainConfiguration>{}(complete));
  }
}

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
  for (int number = 0; number < static_cast<int>(VantariKey::custom); ++number) {
    const VantariKey key(static_cast<VantariKey::Case>(number));
    EXPECT_TRUE(key.rawValue().ends_with("UsageDescription")) << number;
    EXPECT_EQ(VantariKey(key.rawValue()).kind(), key.kind());
  }
  EXPECT_EQ(VantariKey(VantariKey::nfcReaderUsageDescription).rawValue(), "NFCReaderUsageDescription");
  EXPECT_EQ(VantariKey("NSNFCReaderUsageDescription").kind(), VantariKey::custom);
}

TEST(RawValue, OfAColorIsReadFromItsLow24Bits) {
  const auto bytes = [](int red, int green, int blue) { return Color{red / 255.0, green / 255.0, blue / 255.0}; };
  const std::pair<const char*, Color> cases[] = {{"#1A2b3C", bytes(0x1A, 0x2B, 0x3C)},
                                                 {"#11223344", bytes(0x22, 0x33, 0x44)},
                                                 {"#FFF", bytes(0, 0x0F, 0xFF)},
                                                 {"1#2#3#", bytes(0, 0x01, 0x23)},
                                                 {"12 34", bytes(0, 0, 0x12)},
                                                 {"123456789abcdef0123456", bytes(0x12, 0x34, 0x56)},
                                                 {"zz", {}},
                                                 {"", {}}};
  for (const auto& [text, color] : cases) EXPECT_EQ(colorFromText(text), color) << text;
}

}  // namespace
}  // namespace quillon
