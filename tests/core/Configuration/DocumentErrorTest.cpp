// Rejected documents and their error messages.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "core/Json/Codec.h"
#include "quillon/MainConfiguration.h"
#include "quillon/PostConsentsRequest.h"

namespace quillon {
namespace {

using namespace std::string_literals;

class Document : public ::testing::Test {
 protected:
  static std::string errorOf(const std::string& json) {
    const auto record = decode<MainConfiguration>(json);
    return record ? "accepted" : record.error();
  }
};

TEST_F(Document, IsRefusedWithThePlaceAndTheReason) {
  const struct {
    std::string json;
    std::string error;
  } cases[] = {
      {"[]", "document: expected an object"},
      {"null", "document: expected an object"},
      {R"({"version":"3"})", "version: expected an integer"},
      {R"({"version":1.5})", "version: expected an integer"},
      {R"({"version":-9223372036854775809})", "version: expected an integer"},
      {R"({"version":9007199254740993.0})", "version: expected an integer"},
      {R"({"version":0.99999999999999999999})", "version: expected an integer"},
      {R"({"version":1e-1})", "version: expected an integer"},
      {R"({"i18n":{"de":{"a":null}}})", "i18n.de.a: expected a string"},
      {R"({"purposes":[null]})", "purposes[0]: expected an object"},
      {R"({"purposes":[{},{},{},{"sdks":[{"sdk_id":"x"}]}]})", "purposes[3].sdks[0].sdk_id: expected an integer"},
      {R"({"purposes":[{"consent_status":"Granted"}]})", R"(purposes[0].consent_status: unknown value "Granted")"},
      {R"({"banner_config":{"categories":{"a":{"compliance_type":"opt_in"}}}})",
       R"(banner_config.categories.a.compliance_type: unknown value "opt_in")"},
      {R"({"id":"a","id":"a"})", "id: duplicate key"},
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
      {R"({"i18n":{"a\n\u007f\u0000b":7}})", R"(i18n.a\x0a\x7f\x00b: expected an object)"},
      {R"({"i18n":{")" + std::string(63, 'k') + R"(ä":7}})",
       "i18n." + std::string(63, 'k') + "...: expected an object"},
  };
  for (const auto& [json, error] : cases) EXPECT_EQ(errorOf(json), error) << json;
}

TEST_F(Document, MayWriteAWholeNumberInAnyWay) {
  const std::pair<const char*, std::int64_t> cases[] = {{"9223372036854775807", INT64_MAX},
                                                        {"-9223372036854775808", INT64_MIN},
                                                        {"-0", 0},
                                                        {"1.0", 1},
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

TEST_F(Document, NeitherFillsNorCarriesWhatIsWorkedOutLater) {
  const auto record = decode<MainConfiguration>(
      R"( {"purposes":[{"isATTMapped":true,"is_att_mapped":true,"att_description":{"en":"no"}}],
          "permissions":[{"is_settings_prompt_enabled":true}], "token":"no",
          "banner_config":{"names_map":{},"locations":{},"categories":{"default":{"translations":{"en":{}}}}}}
)");
  ASSERT_TRUE(record) << record.error();
  MainConfiguration worked;
  worked.purposes = {Purpose()};
  worked.permissions = {AppPermission()};
  worked.bannerConfig.emplace().categories.emplace("default", BannerConfig());
  EXPECT_TRUE(*record == worked);
  worked.purposes->at(0).isATTMapped = true;
  worked.purposes->at(0).attDescription.emplace();
  worked.permissions->at(0).isSettingsPromptEnabled = true;
  worked.bannerConfig->categories.at("default").translations.emplace();
  EXPECT_EQ(encode(worked), R"({"purposes":[{}],"permissions":[{}],"banner_config":)"
                            R"({"categories":{"default":{}},"names_map":{},"locations":{}}})");
}

TEST_F(Document, KeepsTextsOfAnyLengthAndScript) {
  MainConfiguration record;
  record.name = "\" \\ / \b\f\n\r\t \x01\x1f\x7f" + "\0"s + "ä€😀\u2028";
  record.description = std::string(100'000, 'x');
  record.description->append("\n\"").append(100'000, 'y');
  record.translations = Translations{{"\n", LocalizedText{{"", "\""}, {"\t\"", ""}}}, {"zh", std::nullopt}};
  // Escapes inside a key and in the text right after it.
  record.translations->insert({"a\nb", LocalizedText{{"c\td", "e\"f"}, {"g\th", "i"}, {"j", "k\nl"}}});
  EXPECT_EQ(decode<MainConfiguration>(encode(record)), record);
  EXPECT_EQ(decode<MainConfiguration>(R"({"name":"\u00e4\ud83d\ude00\/\u0000"})")->name, "ä😀/\0"s);
}

TEST_F(Document, IsValidWhateverBytesAHostHandsOver) {
  PostConsentsRequest request;
  request.device = "a\xC3z \xED\xA0\x80 \xF4\x90\x80\x80 \xC0\xAF \xE2\x82";
  const auto sent = decode<PostConsentsRequest>(encode(request));
  ASSERT_TRUE(sent) << sent.error();
  EXPECT_EQ(sent->device, "a\uFFFDz \uFFFD\uFFFD\uFFFD \uFFFD\uFFFD\uFFFD\uFFFD \uFFFD\uFFFD \uFFFD\uFFFD");
}

TEST_F(Document, OfAnUploadHasEveryKeyButAnUnknownVersion) {
  EXPECT_EQ(encode(PostConsentsRequest{}),
            R"({"uuid":"","app_uuid":"","device":"","implicit_consent":false,"version":0,"purpose_consents":[],)"
            R"("permissions":[],"is_test_mode":false,"ad_id":"","banner_info":"","platform":"ios"})");
}

}  // namespace
}  // namespace quillon
