// What a document may be: refused with the place and the reason, in bounded time and memory.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "core/Json/Codec.h"
#include "tests/core/Configuration/CompleteDocuments.h"
#include "tests/support/Contains.h"
#include "tests/support/Effort.h"

namespace quillon {
namespace {

using namespace std::string_literals;
using test::contains;

std::string errorOf(const std::string& json) {
  const auto record = decode<MainConfiguration>(json);
  return record ? "accepted" : record.error();
}

TEST(Document, IsRefusedWithThePlaceAndTheReason) {
  const struct {
    std::string json;
    std::string error;
  } cases[] = {
      {"[]", "document: expected an object"},
      {R"({"version":1.5})", "version: expected an integer"},
      {R"({"version":-9223372036854775809})", "version: expected an integer"},
      {R"({"version":9007199254740993.0})", "version: expected an integer"},
      {R"({"version":0.99999999999999999999})", "version: expected an integer"},
      {R"({"version":1e-1})", "version: expected an integer"},
      {R"({"i18n":{"de":{"a":null}}})", "i18n.de.a: expected a string"},
      {R"({"purposes":[null]})", "purposes[0]: expected an object"},
      {R"({"purposes":[{},{},{},{"sdks":[{"sdk_id":"x"}]}]})", "purposes[3].sdks[0].sdk_id: expected an integer"},
      {R"({"purposes":[{"consent_status":"Granted"}]})", R"(purposes[0].consent_status: unknown value "Granted")"},
      {R"({"id":null,"id":"a"})", "id: duplicate key"},
      {R"({"i18n":{"de":null,"de":{}}})", "i18n.de: duplicate key"},
      {R"({"i18n":{"de":{"a":"","\u0061":""}}})", "i18n.de.a: duplicate key"},
      {R"({"x":{"y":[{"a":1,"b":2,"a":3}]}})", "x.y[0]: duplicate key"},
      {R"({"x":1,"x":1})", "document: duplicate key"},
      {R"({"x":[0,1e400]})", "x[1]: the number is out of range"},
      {R"({"version":-1e400})", "version: the number is out of range"},
      {"", "document: incomplete JSON at byte 0"},
      {R"({"id":"a"} x)", "document: extra data at byte 11"},
      {"{}\0"s, "document: extra data at byte 2"},
      {"\xEF\xBB\xBF{}", "document: syntax error at byte 0"},
      {"{\"x\":\"\xED\xA0\x80\"}", "x: syntax error at byte 6"},
      {R"({"id":"a",})", "id: syntax error at byte 10"},
      {R"({"version":NaN})", "version: syntax error at byte 11"},
      {R"({"i18n":{"a\n\u007f\u0000b":7}})", R"(i18n.a\n\x7f\x00b: expected an object)"},
      {R"({"i18n":{")" + std::string(63, 'k') + R"(ä":7}})",
       "i18n." + std::string(63, 'k') + "...: expected an object"},
  };
  for (const auto& [json, error] : cases) EXPECT_EQ(errorOf(json), error) << json;
}

TEST(Document, MayWriteAWholeNumberInAnyWay) {
  const std::pair<const char*, std::int64_t> cases[] = {{"9223372036854775807", INT64_MAX},
                                                        {"-9223372036854775808", INT64_MIN},
                                                        {"-0", 0},
                                                        {"-1e3", -1000},
                                                        {"12.50E+1", 125},
                                                        {"1200e-2", 12},
                                                        {"0.000e-7", 0},
                                                        {"0e400", 0},
                                                        {"9007199254740992.0", std::int64_t{1} << 53}};
  for (const auto& [json, value] : cases) {
    const auto record = decode<MainConfiguration>(R"({"version":)" + std::string(json) + "}");
    ASSERT_TRUE(record) << record.error();
    EXPECT_EQ(record->version, value) << json;
  }
}

TEST(Document, NeitherFillsNorCarriesWhatIsWorkedOutLater) {
  const auto record = decode<MainConfiguration>(
      R"({"purposes":[{"isATTMapped":true,"is_att_mapped":true,"att_description":{"en":"no"}}],)"
      R"("permissions":[{"is_settings_prompt_enabled":true}],)"
      R"("banner_config":{"names_map":{},"locations":{},"categories":{"default":{"translations":{"en":{}}}}}})");
  MainConfiguration worked;
  worked.purposes = {Purpose()};
  worked.permissions = {AppPermission()};
  worked.bannerConfig.emplace().categories.emplace("default", BannerConfig());
  EXPECT_TRUE(record.value() == worked);
  worked.purposes->at(0).isATTMapped = true;
  worked.purposes->at(0).attDescription.emplace();
  worked.permissions->at(0).isSettingsPromptEnabled = true;
  worked.bannerConfig->categories.at("default").translations.emplace();
  EXPECT_EQ(encode(worked), R"({"purposes":[{}],"permissions":[{}],"banner_config":)"
                            R"({"categories":{"default":{}},"names_map":{},"locations":{}}})");
}

TEST(Document, KeepsTextsOfAnyLengthAndScriptAndRepairsWhatIsNone) {
  MainConfiguration record;
  record.name = "\" \\ / \b\f\n\r\t \x01\x1f\x7f" + "\0"s + "ä€😀\u2028";
  record.description = std::string(100'000, 'x') + "\n\"" + std::string(100'000, 'y');
  // Escapes inside a key and in the text right after it.
  record.translations = Translations{{"\n", LocalizedText{{"", "\""}, {"\t\"", ""}}},
                                     {"zh", std::nullopt},
                                     {"a\nb", LocalizedText{{"c\td", "e\"f"}, {"g\th", "i"}, {"j", "k\nl"}}}};
  EXPECT_EQ(decode<MainConfiguration>(encode(record)), record);
  EXPECT_EQ(decode<MainConfiguration>(R"({"name":"\u00e4\ud83d\ude00\/\u0000"})")->name, "ä😀/\0"s);
  record.name = "a\xC3z \xED\xA0\x80 \xF4\x90\x80\x80 \xC0\xAF \xE2\x82";
  EXPECT_EQ(decode<MainConfiguration>(encode(record))->name,
            "a\uFFFDz \uFFFD\uFFFD\uFFFD \uFFFD\uFFFD\uFFFD\uFFFD \uFFFD\uFFFD \uFFFD\uFFFD");
}

constexpr std::size_t megabyte = std::size_t{1} << 20;

std::string repeated(const std::string& text, std::size_t count) {
  std::string all;
  for (std::size_t i = 0; i < count; ++i) all += text;
  return all;
}

TEST(HostileDocument, MayNest64LevelsAndNoMore) {
  for (const auto& [open, close] : {std::pair("[", "]"), {R"({"a":)", "}"}}) {
    const auto nested = [&](std::size_t levels) {
      return R"({"x":)" + repeated(open, levels - 1) + "1" + repeated(close, levels - 1) + "}";
    };
    EXPECT_EQ(errorOf(nested(64)), "accepted");
    EXPECT_TRUE(contains(errorOf(nested(65)), "too deep"));
  }
  EXPECT_TRUE(contains(errorOf(R"({"x":)" + std::string(30 * megabyte, '[')), "too deep"));
}

TEST(HostileDocument, IsRefusedUnreadBeyond32Megabytes) {
  std::string json = R"({"id":"a"})";
  json.resize(32 * megabyte, ' ');
  EXPECT_EQ(errorOf(json), "accepted");
  EXPECT_EQ(errorOf(json + ' '), "document: larger than 32 MiB");
}

TEST(HostileDocument, IsRefusedWhenItsRecordsWouldTakeTooMuchMemory) {
  EXPECT_TRUE(contains(errorOf(R"({"purposes":[{})" + repeated(",{}", 2'000'000) + "]}"), "takes more than 256 MiB"));
  std::string banners = R"({"banner_config":{"categories":{"":{})";
  for (int i = 0; i < 300'000; ++i) banners += ",\"" + std::to_string(i) + "\":{}";
  EXPECT_TRUE(contains(errorOf(banners + "}}}"), "takes more than 256 MiB"));
}

TEST(HostileDocument, MayHaveMillionsOfUnknownKeysButNoneTwice) {
  std::string json = R"({"id":"a")";
  constexpr int count = test::isSlowed ? 200'000 : 2'000'000;
  for (int i = 0; i < count; ++i) json += ",\"" + std::to_string(i) + "\":0";
  EXPECT_EQ(errorOf(json + "}"), "accepted");
  EXPECT_EQ(errorOf(json + ",\"7\":0}"), "document: duplicate key");
}

TEST(HostileDocument, MayHaveOneVeryLongNumberKeyOrText) {
  const std::string digits(4 * megabyte, '1');
  EXPECT_EQ(errorOf(R"({"x":)" + digits + "}"), "x: the number is out of range");
  EXPECT_EQ(errorOf(R"({"version":0.)" + digits + "}"), "version: expected an integer");
  EXPECT_EQ(errorOf(R"({")" + digits + R"(":"\n)" + digits + R"("})"), "accepted");
  EXPECT_LT(errorOf(R"({"i18n":{")" + digits + R"(":7}})").size(), 200U);
}

TEST(HostileDocument, IsRefusedWhereverItIsCutOff) {
  const std::string& complete = completeDocument<MainConfiguration>.json;
  for (std::size_t length = 0; length < complete.size(); ++length) {
    EXPECT_NE(errorOf(complete.substr(0, length)), "accepted") << length;
  }
}

}  // namespace
}  // namespace quillon
