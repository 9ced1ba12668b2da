#include <gtest/gtest.h>

#include "receiver/uploads/Tokens.h"
#include "receiver/uploads/UploadReader.h"
#include "tests/receiver/UploadBody.h"
#include "tests/support/Contains.h"
#include "tests/support/TemporaryFolder.h"

namespace quillon::test {
namespace {

namespace json = boost::json;
using receiver::readUpload;

TEST(UploadReader, RefusesWhatIsIncompleteUnboundedOrUnfitForAStore) {
  const auto body = [](auto change) {
    auto upload = uploadObject("subject", {{}});
    change(upload);
    return json::serialize(upload);
  };
  const auto with = [&](const char* member, const auto& value) {
    return body([&](json::object& upload) { upload[member] = value; });
  };
  const auto purpose = [&](const char* member, const auto& value) {
    return body([&](json::object& upload) { upload["purpose_consents"].at(0).as_object()[member] = value; });
  };
  const std::string whole = uploadBody("subject", {{}});
  ASSERT_TRUE(readUpload(whole)) << readUpload(whole).error();
  for (const auto& [text, complaint] : std::vector<std::pair<std::string, std::string>>{
           {"", "is not JSON"},
           {whole.substr(0, whole.size() - 1), "is not JSON"},
           {whole + "x", "is not JSON"},
           {"[]", "expected an object"},
           {std::string(100'000, '['), "is not JSON"},
           {std::string(receiver::kMaxBodyBytes + 1, ' '), "is too large"},
           {body([](json::object& upload) { upload.erase("device"); }), "device: is missing"},
           {with("uuid", ""), "uuid: is empty"},
           {with("uuid", std::string(513, 'x')), "uuid: is too long"},
           {with("uuid", std::string("a\0b", 3)), "uuid: holds a zero byte"},
           {with("version", 3.5), "version: expected an integer"},
           {with("implicit_consent", "no"), "implicit_consent: expected true or false"},
           {with("permissions", json::array(10'001)), "permissions: has too many entries"},
           {with("permissions", json::array{1}), "permissions[0]: expected an object"},
           {purpose("consent_status", "maybe"), "purpose_consents[0].consent_status: is not a consent status"},
           {purpose("timestamp", 100'000'000'001), "purpose_consents[0].timestamp: is out of range"},
           {"{\"uuid\":\"\xff\"}", "is not JSON"}}) {
    const auto upload = readUpload(text);
    ASSERT_FALSE(upload) << text.substr(0, 300);
    EXPECT_TRUE(contains(upload.error(), complaint));
  }
  EXPECT_TRUE(readUpload(with("uuid", std::string(512, 'x'))));
  EXPECT_TRUE(readUpload(with("tomorrow", json::array{1, json::object()})));
}

TEST(Tokens, AreGoodForTheirApplicationAndSeveralAtOnce) {
  const TemporaryFolder folder(TemporaryFolder::fastParent());
  const auto file = folder.path() / "tokens";
  setFileBytes(
      file, "# tenant application token\n\nacme reader old\nacme reader new\n  other reader third\nacme shop old2\n");
  const auto tokens = receiver::Tokens::read(file);
  ASSERT_TRUE(tokens) << tokens.error();
  EXPECT_EQ(tokens->size(), 4u);
  const auto tenantOf = [&](const char* application, const char* token) {
    const auto* match = tokens->find(application, token);
    return match == nullptr ? std::string("-") : match->tenant + std::to_string(match->line);
  };
  EXPECT_EQ(tenantOf("reader", "old"), "acme3");
  EXPECT_EQ(tenantOf("reader", "new"), "acme4");
  EXPECT_EQ(tenantOf("reader", "third"), "other5");
  for (const char* wrong : {"", "ol", "oldx", "old2", "oldold", "OLD"})
    EXPECT_EQ(tenantOf("reader", wrong), "-") << wrong;
  EXPECT_EQ(tenantOf("unknown", "old"), "-");
  for (const auto* bad : {"", "# nothing\n", "acme reader\n", "acme reader token more\n"}) {
    setFileBytes(file, bad);
    EXPECT_FALSE(receiver::Tokens::read(file)) << bad;
  }
  EXPECT_FALSE(receiver::Tokens::read(folder.path() / "missing"));
}

}  // namespace
}  // namespace quillon::test
