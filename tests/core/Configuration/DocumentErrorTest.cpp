// Which documents are refused, and what the message says.
#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "core/Configuration/Codec.h"
#include "core/Network/Responses.h"
#include "quillon/MainConfiguration.h"
#include "quillon/PostConsentsRequest.h"

namespace quillon {
namespace {

using namespace std::string_literals;

class Document : public testing::Test {
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
      {R"({"version":9223372036854775808})", "version: expected an integer"},
      {R"({"version":-9223372036854775809})", "version: expected an integer"},
      {R"({"version":9007199254740993.0})", "version: expected an integer"},
      {R"({"version":0.99999999999999999999})", "version: expected an integer"},
      {R"({"version":4503599627370497.25})", "version: expected an integer"},
      {R"({"version":1e-1})", "version: expected an integer"},
      {R"({"version":true})", "version: expected an integer"},
      {R"({"is_att_enabled":1})", "is_att_enabled: expected a boolean"},
      {R"({"id":[]})", "id: expected a string"},
      {R"({"i18n":{"de":{"a":null}}})", "i18n.de.a: expected a string"},
      {R"({"purposes":{}})", "purposes: expected an array"},
      {R"({"purposes":[null]})", "purposes[0]: expected an object"},
      {R"({"purposes":[{},{},{},{"sdks":[{"sdk_id":"x"}]}]})", "purposes[3].sdks[0].sdk_id: expected an integer"},
      {R"({"purposes":[{"consent_status":"Granted"}]})", R"(purposes[0].consent_status: unknown value "Granted")"},
      {R"({"purposes":[{"consent_status":7}]})", "purposes[0].consent_status: expected a string"},
      {R"({"banner_config":{"categories":{},"names_map":{}}})", "banner_config.locations: is required"},
      {R"({"banner_config":{"categories":{"a":{"compliance_type":"opt_in"}}}})",
       R"(banner_config.categories.a.compliance_type: unknown value "opt_in")"},
      {R"({"banner_config":{"categories":{"a":{"button_shape":"Pill"}}}})",
       R"(banner_config.categories.a.button_shape: unknown value "Pill")"},
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
      {"{\"id\":\"\xC3\x28\"}", "id: syntax error at byte 7"},
      {"{\"x\":\"\xED\xA0\x80\"}", "x: syntax error at byte 6"},
      {R"({"id":"\ud800"})", "id: syntax error at byte 13"},
      {"{\"id\":\"\n\"}", "id: syntax error at byte 7"},
      {"{\"\0\":1}"s, "document: syntax error at byte 2"},
      {R"({"id":"a",})", "id: syntax error at byte 10"},
      {R"({"version":01})", "version: syntax error at byte 12"},
      {R"({"version":NaN})", "version: syntax error at byte 11"},
      {R"({"i18n":{"a\n\u007f\u0000b":7}})", R"(i18n.a\x0a\x7f\x00b: expected an object)"},
      {R"({"i18n":{")" + std::string(63, 'k') + R"(ä":7}})",
       "i18n." + std::string(63, 'k') + "...: expected an object"},
  };
  for (const auto& [json, error] : cases) EXPECT_EQ(errorOf(json), error) << json;
}

TEST_F(Document, MayWriteAWholeNumberInAnyWay) {
  const struct {
    const char* json;
    std::int64_t value;
  } cases[] = {
      {"9223372036854775807", std::numeric_limits<std::int64_t>::max()},
      {"-9223372036854775808", std::numeric_limits<std::int64_t>::min()},
      {"-0", 0},
      {"1.0", 1},
      {"-1e3", -1000},
      {"12.50E+1", 125},
      {"1200e-2", 12},
      {"0.000e-7", 0},
      {"0e400", 0},
      {"9007199254740992.0", std::int64_t{1} << 53},
  };
  for (const auto& [json, value] : cases) {
    const auto record = decode<MainConfiguration>(R"({"version":)" + std::string(json) + "}");
    ASSERT_TRUE(record) << record.error();
    EXPECT_EQ(record->version, value) << json;
  }
}

TEST_F(Document, LeavesOutWhatItDoesNotSay) {
  const auto empty = decode<MainConfiguration>("\r\n\t {} ");
  ASSERT_TRUE(empty) << empty.error();
  EXPECT_TRUE(*empty == MainConfiguration{});
  EXPECT_EQ(encode(*empty), "{}");
}

TEST_F(Document, DoesNotFillWhatIsWorkedOutLater) {
  const auto record = decode<MainConfiguration>(
      R"({"token":"no","x-auth-token":"yes",
          "purposes":[{"isATTMapped":true,"is_att_mapped":true,"att_description":{"en":"no"}}],
          "permissions":[{"is_settings_prompt_enabled":true,"name_i18n":{"en":"no"},"nameI18N":{"en":"yes"}}],
          "banner_config":{"names_map":{},"locations":{},"categories":{"default":{
              "translations":{"en":{}},"show_powered_by_quillon_logo":true,"hide_accept_toggle":false}}}})");
  ASSERT_TRUE(record) << record.error();
  EXPECT_EQ(record->token, "yes");
  const Purpose& purpose = record->purposes->at(0);
  EXPECT_EQ(purpose.isATTMapped, false);
  EXPECT_EQ(purpose.attDescription, std::nullopt);
  const AppPermission& permission = record->permissions->at(0);
  EXPECT_EQ(permission.isSettingsPromptEnabled, std::nullopt);
  EXPECT_EQ(permission.nameMap->at("en"), "yes");
  const BannerConfig& banner = record->bannerConfig->categories.at("default");
  EXPECT_EQ(banner.translations, std::nullopt);
  EXPECT_EQ(banner.showPoweredByQuillonLogo, true);
  EXPECT_EQ(banner.hideAcceptButton, false);
}

TEST_F(Document, NeverCarriesWhatIsWorkedOutLater) {
  Purpose purpose;
  purpose.isATTMapped = true;
  purpose.attDescription.emplace();
  EXPECT_EQ(encode(purpose), "{}");
  AppPermission permission;
  permission.isSettingsPromptEnabled = true;
  EXPECT_EQ(encode(permission), "{}");
  BannerConfig banner;
  banner.translations.emplace();
  EXPECT_EQ(encode(banner), "{}");
}

TEST_F(Document, KeepsTextsOfAnyLengthAndScript) {
  MainConfiguration record;
  record.name = "\" \\ / \b\f\n\r\t \x01\x1f\x7f" + "\0"s + "ä€😀\u2028";
  record.description = std::string(100'000, 'x');
  record.description->append("\n\"").append(100'000, 'y');
  record.translations = Translations{{"\n", LocalizedText{{"", "\""}, {"\t\"", ""}}}, {"zh", std::nullopt}};
  // Escapes in the middle, in a key and in the text right after it.
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

TEST_F(Document, NamesAPermissionByAnyText) {
  const auto record = decode<MainConfiguration>(R"({"permissions":[{"permission_id":"NFCReaderUsageDescription"},)"
                                                R"({"permission_id":"my own"}]})");
  ASSERT_TRUE(record) << record.error();
  EXPECT_EQ(record->permissions->at(0).permissionId, VantariKey(VantariKey::nfcReaderUsageDescription));
  EXPECT_EQ(record->permissions->at(1).permissionId->kind(), VantariKey::custom);
  EXPECT_EQ(encode(record->permissions->at(1)), R"({"permission_id":"my own"})");
}

TEST_F(Document, OfALocationNeedsAWholePlaceOrNone) {
  EXPECT_EQ(decode<CurrentLocationResponse>(R"({"status":0,"message":""})")->data, std::nullopt);
  EXPECT_EQ(decode<CurrentLocationResponse>(R"({"status":0,"message":"","data":{}})").error(),
            "data.City: is required");
}

}  // namespace
}  // namespace quillon
